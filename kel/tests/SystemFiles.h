/// @file SystemFiles.h
/// The door to files of the system that a test needs: such as cannot be read or written, pipes. posix/ and
/// windows/ hold one implementation each.
#pragma once

#include "TempFolder.h"

#include "kel/Path.h"

#include <memory>
#include <string>

/// A file that opens, but whose content the system refuses to give, or to take.
class CRefusingFile {
public:
    virtual ~CRefusingFile() = default;
    [[nodiscard]] virtual kel::CPath getPath() const = 0;
    /// To be called when it has been opened.
    virtual void beginToRefuse() {}
    /// What the system says about it.
    [[nodiscard]] virtual std::string getReason() const = 0;
};
[[nodiscard]] std::unique_ptr<CRefusingFile> makeUnreadableFile();
[[nodiscard]] std::unique_ptr<CRefusingFile> makeUnwritableFile();

/// A pipe by name into which a thread writes as soon as somebody has opened it for reading.
class CPipeWriter {
public:
    explicit CPipeWriter(std::string text);
    CPipeWriter(const CPipeWriter&) = delete;
    CPipeWriter& operator=(const CPipeWriter&) = delete;
    ~CPipeWriter();

    [[nodiscard]] kel::CPath getPath() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// How many of the process's open descriptors are inherited by child processes and stand for this file.
[[nodiscard]] int countInheritableDescriptors(const std::filesystem::path& file);

/// The full path of the running program.
[[nodiscard]] std::filesystem::path getProgramPath();
