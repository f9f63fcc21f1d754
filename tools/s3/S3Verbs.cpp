#include "s3/S3Verbs.h"

#include "s3/GetObjectCommand.h"
#include "s3/ListCommand.h"
#include "s3/ObjectCommands.h"
#include "s3/PutObjectCommand.h"

namespace vantra::tool {

void addS3Verbs(CLI::App& program, VerbList& verbs) {
    CLI::App& group = addVerbGroup(program, "s3", "Work with objects in Amazon S3 and compatible stores");
    verbs.push_back(std::make_unique<CListCommand>(group));
    verbs.push_back(std::make_unique<CGetObjectCommand>(group));
    verbs.push_back(std::make_unique<CPutObjectCommand>(group));
    verbs.push_back(std::make_unique<CHeadObjectCommand>(group));
    verbs.push_back(std::make_unique<CCopyObjectCommand>(group));
    verbs.push_back(std::make_unique<CRemoveObjectCommand>(group));
    verbs.push_back(std::make_unique<CObjectExistsCommand>(group));
}

} // namespace vantra::tool
