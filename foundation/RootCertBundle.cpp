#include "vantra/GlobalInit.h"

#include <kel/Error.h>
#include <kel/ResourceManager.h>

namespace vantra {

kel::TPathImpl<kel::CWindowsPathTraits> getRootCertBundlePath() {
    using Path = kel::TPathImpl<kel::CWindowsPathTraits>;
    Path found = kel::CResourceManager::get()->findResource(Path("vantra") / Path("ca-bundle.crt"));
    if (found.isEmpty())
        throw kel::CError("INTERNAL ERROR: Root certificate bundle not found in application resources.");
    return found;
}

} // namespace vantra
