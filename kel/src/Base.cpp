#include "kel/Base.h"

namespace kel {

IBase::~IBase() = default;

CBase::~CBase() = default;

void CBase::deleteThis() noexcept { delete this; }

} // namespace kel
