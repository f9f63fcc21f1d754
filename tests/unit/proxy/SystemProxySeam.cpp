#include "SystemProxySeam.h"

#include <atomic>

namespace proxytest {

namespace {

std::atomic<int> callCount{0};

/// Outlives all other static objects, as the library may ask at the very end.
std::function<vantra::CSystemProxy()>& getAnswer() {
    static auto& answer = *new std::function<vantra::CSystemProxy()>([] { return vantra::CSystemProxy(); });
    return answer;
}

} // namespace

void setSystemProxy(std::function<vantra::CSystemProxy()> answer) { getAnswer() = std::move(answer); }

void setSystemProxy(const kel::String& proxyList, const kel::String& bypassList) {
    setSystemProxy([=] { return vantra::CSystemProxy{proxyList, bypassList}; });
}

int getSystemProxyCallCount() { return callCount; }

vantra::CSystemProxy answerForTheSystem() asm("__wrap__ZN6vantra14getSystemProxyEv");
vantra::CSystemProxy answerForTheSystem() {
    ++callCount;
    return getAnswer()();
}

} // namespace proxytest
