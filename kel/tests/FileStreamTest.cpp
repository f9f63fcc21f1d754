#include "kel/FileStream.h"
#include "kel/Error.h"
#include "kel/P.h"

#include "LogCapture.h"
#include "SystemFiles.h"
#include "TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Mode = kel::CFileOutStream::Mode;

const std::string everyByte = [] {
    std::string bytes;
    for (int value = 0; value < 256; ++value) bytes += static_cast<char>(value);
    return bytes + "\r\n\n\r\x1A end";
}();

std::string read(kel::IInStream& stream, std::size_t maxLength) {
    std::string text(maxLength, '?');
    text.resize(stream.read(text.data(), maxLength));
    return text;
}

/// The message of the CError that `action` throws.
template <class Action>
std::string getErrorMessage(Action action) {
    try {
        action();
    } catch (const kel::CError& error) {
        return error.getMessage().toUTF8();
    }
    return "no error";
}

std::string quote(const kel::CPath& path) { return "'" + path.getText().toUTF8() + "'"; }

TEST(FileInStream, ReadsTheFileByteForByte) {
    const CTempFolder folder;
    folder.writeFile("bytes", everyByte);
    const kel::P<kel::CFileInStream> stream = new kel::CFileInStream(folder / "bytes");
    EXPECT_EQ(stream->getSize(), static_cast<kel::int64>(everyByte.size()));
    EXPECT_EQ(stream->getPosition(), 0);
    EXPECT_EQ(read(*stream, 10), everyByte.substr(0, 10));
    EXPECT_EQ(stream->getPosition(), 10);
    EXPECT_EQ(read(*stream, 10'000), everyByte.substr(10));
    EXPECT_EQ(stream->getPosition(), static_cast<kel::int64>(everyByte.size()));
    EXPECT_EQ(read(*stream, 1), "");
    EXPECT_EQ(read(*stream, 1), "");
}

TEST(FileInStream, ReadsAnEmptyFile) {
    const CTempFolder folder;
    folder.writeFile("empty", "");
    kel::CFileInStream stream(folder / "empty");
    EXPECT_EQ(stream.getSize(), 0);
    EXPECT_EQ(read(stream, 10), "");
}

TEST(FileInStream, ReadsNothingWhenAskedForNothing) {
    const CTempFolder folder;
    folder.writeFile("file", "abc");
    kel::CFileInStream stream(folder / "file");
    EXPECT_EQ(stream.read(nullptr, 0), 0U);
    EXPECT_EQ(read(stream, 10), "abc");
}

TEST(FileInStream, MovesInTheFile) {
    const CTempFolder folder;
    folder.writeFile("file", "abcdef");
    kel::CFileInStream stream(folder / "file");
    stream.seek(4);
    EXPECT_EQ(stream.getPosition(), 4);
    EXPECT_EQ(read(stream, 10), "ef");
    stream.seek(0);
    EXPECT_EQ(read(stream, 2), "ab");
    stream.seek(100);
    EXPECT_EQ(stream.getPosition(), 100);
    EXPECT_EQ(read(stream, 10), "") << "nothing lies behind the end";
    stream.seek(5);
    EXPECT_EQ(read(stream, 10), "f");
}

TEST(FileInStream, RefusesANegativePosition) {
    const CTempFolder folder;
    folder.writeFile("file", "abcdef");
    kel::CFileInStream stream(folder / "file");
    stream.seek(2);
    EXPECT_EQ(getErrorMessage([&] { stream.seek(-1); }),
              "Error seeking in file " + quote(folder / "file") + ": Invalid argument.");
    EXPECT_EQ(stream.getPosition(), 2);
    EXPECT_EQ(read(stream, 10), "cdef");
}

TEST(FileInStream, ReadsOnWhereTheFileHasGrown) {
    const CTempFolder folder;
    folder.writeFile("file", "abc");
    kel::CFileInStream stream(folder / "file");
    EXPECT_EQ(read(stream, 10), "abc");
    EXPECT_EQ(read(stream, 10), "");
    folder.writeFile("file", "abcdef");
    EXPECT_EQ(stream.getSize(), 6);
    EXPECT_EQ(read(stream, 10), "def");
}

TEST(FileInStream, ReadsBeyondFourGigabytes) {
    const CTempFolder folder;
    constexpr kel::int64 hugeSize = (kel::int64{5} << 30) + 3;
    folder.writeFile("sparse", "");
    std::filesystem::resize_file(folder.getStdPath() / "sparse", static_cast<std::uintmax_t>(hugeSize));
    kel::CFileInStream stream(folder / "sparse");
    EXPECT_EQ(stream.getSize(), hugeSize);
    stream.seek(hugeSize - 2);
    EXPECT_EQ(read(stream, 10), std::string(2, '\0'));
    EXPECT_EQ(stream.getPosition(), hugeSize);
}

TEST(FileInStream, OpensAFileByItsUnicodeName) {
    const CTempFolder folder;
    const char* const name = "Gr\xC3\xBC\xC3\x9F"
                             "e \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8E\xB5.txt";
    folder.writeFile(name, "content");
    kel::CFileInStream stream(folder / name);
    EXPECT_EQ(read(stream, 100), "content");
}

TEST(FileInStream, TakesBackslashesAsSeparators) {
    const CTempFolder folder;
    std::filesystem::create_directory(folder.getStdPath() / "sub");
    folder.writeFile("sub/file", "content");
    kel::CFileInStream stream(folder / "sub\\file");
    EXPECT_EQ(read(stream, 100), "content");
}

TEST(FileInStream, SaysWhyAFileCannotBeOpened) {
    const CTempFolder folder;
    folder.writeFile("file", "");
    const auto open = [&](const kel::CPath& path) {
        return getErrorMessage([&] { const kel::CFileInStream stream(path); });
    };
    EXPECT_EQ(open(folder / "missing \xC3\xA4"),
              "Error opening file " + quote(folder / "missing \xC3\xA4") + ": No such file or directory.");
    EXPECT_EQ(open(folder / "file/below"),
              "Error opening file " + quote(folder / "file/below") + ": Not a directory.");
    EXPECT_EQ(open(folder.getPath()), "Error opening file " + quote(folder.getPath()) + ": Is a directory.");
    EXPECT_EQ(open(kel::CPath()), "Error opening file '': No such file or directory.");
}

TEST(FileInStream, RefusesANameWithANul) {
    const CTempFolder folder;
    folder.writeFile("file", "abc");
    const kel::CPath path = folder.getPath() / kel::CPath(kel::String("file\0.txt", 9));
    EXPECT_EQ(getErrorMessage([&] { const kel::CFileInStream stream(path); }),
              "Error opening file " + quote(path) + ": Invalid argument.");
}

TEST(FileInStream, ReadsAPipeWhichHasNoSizeAndNoPositions) {
    const CPipeWriter writer("through");
    kel::CFileInStream stream(writer.getPath());
    EXPECT_EQ(stream.getSize(), -1);
    EXPECT_EQ(getErrorMessage([&] { stream.seek(1); }),
              "Error seeking in file " + quote(writer.getPath()) + ": Illegal seek.");
    EXPECT_EQ(read(stream, 100), "through");
    EXPECT_EQ(stream.getPosition(), 7);
    EXPECT_EQ(read(stream, 100), "");
}

TEST(FileInStream, ReportsAReadError) {
    const auto file = makeUnreadableFile();
    kel::CFileInStream stream(file->getPath());
    file->beginToRefuse();
    EXPECT_EQ(getErrorMessage([&] { read(stream, 10); }),
              "Error reading file " + quote(file->getPath()) + ": " + file->getReason() + ".");
    EXPECT_EQ(stream.getPosition(), 0);
}

TEST(FileInStream, IsNotInheritedByChildProcesses) {
    const CTempFolder folder;
    folder.writeFile("file", "abc");
    const kel::CFileInStream stream(folder / "file");
    EXPECT_EQ(countInheritableDescriptors(folder.getStdPath() / "file"), 0);
}

TEST(FileOutStream, WritesTheFileByteForByte) {
    const CTempFolder folder;
    const kel::P<kel::CFileOutStream> stream = new kel::CFileOutStream(folder / "file", Mode::CreateNew);
    stream->write(everyByte.data(), 100);
    stream->write(nullptr, 0);
    stream->write(everyByte.data() + 100, everyByte.size() - 100);
    stream->close();
    EXPECT_EQ(folder.readFile("file"), everyByte);
}

TEST(FileOutStream, ReplacesAnExistingFile) {
    const CTempFolder folder;
    folder.writeFile("file", "long content of before");
    {
        kel::CFileOutStream stream(folder / "file", Mode::Replace);
        EXPECT_EQ(folder.readFile("file"), "");
        stream.write("new", 3);
    }
    EXPECT_EQ(folder.readFile("file"), "new");
}

TEST(FileOutStream, CreatesAFileThatIsNotThereInBothModes) {
    const CTempFolder folder;
    kel::CFileOutStream(folder / "replaced", Mode::Replace).write("1", 1);
    kel::CFileOutStream(folder / "created", Mode::CreateNew).write("2", 1);
    EXPECT_EQ(folder.readFile("replaced"), "1");
    EXPECT_EQ(folder.readFile("created"), "2");
}

TEST(FileOutStream, LeavesAnExistingFileAloneIfAskedForANewOne) {
    const CTempFolder folder;
    folder.writeFile("file", "precious");
    EXPECT_EQ(getErrorMessage([&] { const kel::CFileOutStream stream(folder / "file", Mode::CreateNew); }),
              "Error creating file " + quote(folder / "file") + ": File exists.");
    EXPECT_EQ(folder.readFile("file"), "precious");
}

TEST(FileOutStream, SaysWhyAFileCannotBeCreated) {
    const CTempFolder folder;
    EXPECT_EQ(getErrorMessage([&] { const kel::CFileOutStream s(folder / "no/file", Mode::Replace); }),
              "Error creating file " + quote(folder / "no/file") + ": No such file or directory.");
    EXPECT_EQ(getErrorMessage([&] { const kel::CFileOutStream s(folder.getPath(), Mode::Replace); }),
              "Error creating file " + quote(folder.getPath()) + ": Is a directory.");
    EXPECT_EQ(getErrorMessage([&] { const kel::CFileOutStream s(folder.getPath(), Mode::CreateNew); }),
              "Error creating file " + quote(folder.getPath()) + ": File exists.");
}

TEST(FileOutStream, CreatesAFileWithAUnicodeName) {
    const CTempFolder folder;
    const char* const name = "\xE2\x82\xAC \xF0\x9F\x8E\xB5";
    kel::CFileOutStream(folder / name, Mode::CreateNew).write("x", 1);
    EXPECT_EQ(folder.readFile(name), "x");
}

TEST(FileOutStream, FlushHandsTheBytesOver) {
    const CTempFolder folder;
    kel::CFileOutStream stream(folder / "file", Mode::CreateNew);
    stream.write("abc", 3);
    stream.flush();
    EXPECT_EQ(folder.readFile("file"), "abc");
    stream.write("def", 3);
    stream.close();
    EXPECT_EQ(folder.readFile("file"), "abcdef");
}

TEST(FileOutStream, TakesNothingMoreAfterClose) {
    const CTempFolder folder;
    kel::CFileOutStream stream(folder / "file", Mode::CreateNew);
    stream.write("abc", 3);
    stream.close();
    stream.close();
    stream.flush();
    EXPECT_EQ(getErrorMessage([&] { stream.write("def", 3); }),
              "Error writing file " + quote(folder / "file") + ": Bad file descriptor.");
    EXPECT_EQ(folder.readFile("file"), "abc");
}

class FileOutStreamFault : public testing::Test {
protected:
    [[nodiscard]] kel::CPath getPath() const { return file_->getPath(); }
    [[nodiscard]] std::string getMessage() const {
        return "Error writing file " + quote(getPath()) + ": " + file_->getReason() + ".";
    }

    void beginToRefuse() const { file_->beginToRefuse(); }

private:
    std::unique_ptr<CRefusingFile> file_ = makeUnwritableFile();
};

TEST_F(FileOutStreamFault, IsReportedFromThenOn) {
    const CLogCapture log;
    {
        kel::CFileOutStream stream(getPath(), Mode::Replace);
        beginToRefuse();
        const std::string large(1'000'000, 'x');
        EXPECT_EQ(getErrorMessage([&] { stream.write(large.data(), large.size()); }), getMessage());
        EXPECT_EQ(getErrorMessage([&] { stream.write("x", 1); }), getMessage());
        EXPECT_EQ(getErrorMessage([&] { stream.flush(); }), getMessage());
        EXPECT_EQ(getErrorMessage([&] { stream.close(); }), getMessage());
        EXPECT_EQ(getErrorMessage([&] { stream.close(); }), "no error") << "a second call does nothing";
    }
    EXPECT_THAT(log.getLines(), IsEmpty());
}

TEST_F(FileOutStreamFault, IsReportedOnFlush) {
    const CLogCapture log;
    {
        kel::CFileOutStream stream(getPath(), Mode::Replace);
        beginToRefuse();
        stream.write("x", 1);
        EXPECT_EQ(getErrorMessage([&] { stream.flush(); }), getMessage());
    }
    EXPECT_THAT(log.getLines(), IsEmpty()) << "the caller knows of it already";
}

TEST_F(FileOutStreamFault, IsReportedOnClose) {
    kel::CFileOutStream stream(getPath(), Mode::Replace);
    beginToRefuse();
    stream.write("x", 1);
    EXPECT_EQ(getErrorMessage([&] { stream.close(); }), getMessage());
}

TEST_F(FileOutStreamFault, IsLoggedIfOnlyTheDestructorMeetsIt) {
    const CLogCapture log;
    {
        kel::CFileOutStream stream(getPath(), Mode::Replace);
        beginToRefuse();
        stream.write("x", 1);
    }
    EXPECT_THAT(log.getLines(),
                ElementsAre("error: Exception in destructor of CFileOutStream (ignored).: " + getMessage()));
}

} // namespace
