#include "Terminal.h"

#include <cstdlib>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tooltest {

using testsupport::checkedDescriptor;
using testsupport::throwErrno;

Terminal::Terminal(unsigned short rows)
    : master_(checkedDescriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), "open a terminal")) {
    char name[64] = {};
    if (grantpt(master_.get()) != 0 || unlockpt(master_.get()) != 0 ||
        ptsname_r(master_.get(), name, sizeof(name)) != 0)
        throwErrno("set up a terminal");
    path_ = name;
    keeper_ = checkedDescriptor(open(name, O_RDWR | O_NOCTTY | O_CLOEXEC), "open a terminal");
    const winsize size{rows, 80, 0, 0};
    if (ioctl(keeper_.get(), TIOCSWINSZ, &size) != 0) throwErrno("size a terminal");
    reader_ = std::thread([this] { readAll(); });
}

Terminal::~Terminal() {
    keeper_.reset(); // reading ends with an error now
    reader_.join();
}

void Terminal::readAll() {
    char block[4096];
    ssize_t count = 0;
    while ((count = read(master_.get(), block, sizeof(block))) > 0) {
        const std::lock_guard lock(mutex_);
        written_.append(block, static_cast<std::size_t>(count));
    }
}

std::string Terminal::written() const {
    const std::lock_guard lock(mutex_);
    return written_;
}

std::string Terminal::screen() const {
    std::vector<std::string> rows(1);
    const std::string bytes = written();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\r') continue;
        if (bytes[i] == '\n') {
            rows.emplace_back();
        } else if (bytes[i] != '\x1b') {
            rows.back() += bytes[i];
        } else {
            const std::size_t end = bytes.find_first_of("ABCDHJKhlm", i);
            const std::string sequence = bytes.substr(i + 1, end - i);
            i = end;
            if (sequence == "[?7l" || sequence == "[?7h" || sequence == "[J") continue;
            const std::size_t up = std::stoul(sequence.substr(1));
            if (sequence.back() != 'A' || up >= rows.size()) throw std::runtime_error("sequence " + sequence);
            rows.resize(rows.size() - up);
            rows.back().clear(); // what the tool does next: it clears from there
        }
    }
    std::string text;
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) text += rows[i] + "\n";
    return text + rows.back();
}

} // namespace tooltest
