#include "files/Output.h"

#include "Errors.h"
#include "files/NewFile.h"
#include "files/OutputFile.h"
#include "files/StandardFiles.h"
#include "files/Terminal.h"

#include <kel/FileStream.h>
#include <kel/Path.h>

#include <cerrno>
#include <system_error>

namespace vantra::tool {

using kel::CError;
using kel::CFileOutStream;
using kel::CPath;
using kel::P;
using kel::String;

namespace {

class CStandardOutput : public IOutput {
public:
    void write(std::string_view bytes) override {
        const int error = writeStandardOutput(bytes);
        if (error == EPIPE) throw CClosedPipeError();
        if (error != 0)
            throw CError(
                "Error writing to standard output: " + String(std::generic_category().message(error)) + ".");
    }
    void commit() override {}
    [[nodiscard]] bool isTerminal() const noexcept override { return isStandardOutputTerminal(); }
};

/// Something that exists and is no ordinary file, such as /dev/null or a named pipe.
class CSpecialFile : public IOutput {
public:
    explicit CSpecialFile(const CPath& path)
        : stream_(new CFileOutStream(path, CFileOutStream::Mode::Replace)) {}

    void write(std::string_view bytes) override {
        stream_->write(bytes.data(), bytes.size());
        stream_->flush(); // whoever reads at the other end is not to wait for a full buffer
    }
    void commit() override { stream_->close(); }

private:
    P<CFileOutStream> stream_;
};

} // namespace

std::unique_ptr<IOutput> openOutput(const std::optional<String>& name) {
    if (!name || *name == "-") return std::make_unique<CStandardOutput>();
    const CPath path(*name);
    if (isSpecialFile(path.toStdPath())) return std::make_unique<CSpecialFile>(path);
    return std::make_unique<CNewFile>(path);
}

} // namespace vantra::tool
