#include "Verbs.h"

#include "ftp/FTPVerb.h"
#include "getall/GetAllCommand.h"
#include "http/GetCommand.h"
#include "http/UploadCommand.h"
#include "mail/MailVerbs.h"
#include "ProxyCommand.h"
#include "s3/S3Verbs.h"

namespace vantra::tool {

void addVerbs(CLI::App& program, VerbList& verbs) {
    verbs.push_back(std::make_unique<CGetCommand>(program));
    verbs.push_back(std::make_unique<CGetAllCommand>(program));
    verbs.push_back(std::make_unique<CUploadCommand>(program, CUploadCommand::Kind::Put));
    verbs.push_back(std::make_unique<CUploadCommand>(program, CUploadCommand::Kind::Post));
    verbs.push_back(std::make_unique<CProxyCommand>(program));
    addFTPVerbs(program, verbs);
    addMailVerbs(program, verbs);
    addS3Verbs(program, verbs);
}

} // namespace vantra::tool
