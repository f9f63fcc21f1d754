#include "arguments/HiddenPassword.h"

#include <gtest/gtest.h>

using kel::String;
using vantra::tool::hidePasswords;

TEST(HiddenPassword, IsLeftOutOfEachURL) {
    EXPECT_EQ(hidePasswords("http://u:p@h/"), "http://u:~stripped~@h/");
    EXPECT_EQ(hidePasswords("'ftp://:p@h' and socks5://u:p:q@r@h:1080?"),
              "'ftp://:~stripped~@h' and socks5://u:~stripped~@h:1080?");
    EXPECT_EQ(hidePasswords("x://u:p@"), "x://u:~stripped~@");
    EXPECT_EQ(hidePasswords("syntax in 'u:p@gate bad'"), "syntax in 'u:~stripped~@gate bad'");
    EXPECT_EQ(hidePasswords("'http://u:p@h'"), "'http://u:~stripped~@h'");
}

TEST(HiddenPassword, LeavesOtherTextsAlone) {
    for (const char* text : {"", "://", "http://h:80/a@b", "http://h/u:p@x", "http://u@h:80/", "u:p@h",
                             "mail jane@example.org: 550", "http://[::1]:8080/", "http://h?u:p@x",
                             "a://b ://", "''", "file 'C:\\a@b'", "'x@y:z'", "it's"})
        EXPECT_EQ(hidePasswords(text), text);
}
