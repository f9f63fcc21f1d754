/// Which HTTP responses count as success. Private to the library.
#pragma once

namespace vantra {

inline bool isSuccessStatus(int status) { return status >= 200 && status <= 299; }

} // namespace vantra
