#include "SystemThreads.h"

#include "kel/String.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include <windows.h>

#include <pthread.h>

namespace {

using ThreadStart = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

int refuseThread(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*) { return EAGAIN; }

template <class T>
T* at(HMODULE module, DWORD offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(module) + offset);
}

/// Where a loaded module keeps the address of a function that it imports by this name; null if it imports
/// none.
ThreadStart* findImport(HMODULE module, const char* name) {
    const auto* const dos = at<IMAGE_DOS_HEADER>(module, 0);
    const auto* const headers = at<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(dos->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (const auto* dll = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); dll->Name != 0;
         ++dll) {
        const auto* names = at<IMAGE_THUNK_DATA>(module, dll->OriginalFirstThunk);
        auto* addresses = at<IMAGE_THUNK_DATA>(module, dll->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* const entry =
                at<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(names->u1.AddressOfData));
            if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0)
                return reinterpret_cast<ThreadStart*>(&addresses->u1.Function);
        }
    }
    return nullptr;
}

void replace(ThreadStart* place, ThreadStart function) {
    DWORD protection = 0;
    EXPECT_TRUE(::VirtualProtect(place, sizeof(*place), PAGE_READWRITE, &protection));
    *place = function;
    EXPECT_TRUE(::VirtualProtect(place, sizeof(*place), protection, &protection));
}

} // namespace

struct CNoMoreThreads::State {
    ThreadStart* place = nullptr;
    ThreadStart before = nullptr;
};

// Stands between the C++ library and the library of threads that it starts them with.
CNoMoreThreads::CNoMoreThreads() : state_(new State()) {
    const HMODULE standardLibrary = ::GetModuleHandleW(L"libstdc++-6.dll");
    if (standardLibrary) state_->place = findImport(standardLibrary, "pthread_create");
    if (!state_->place) {
        ADD_FAILURE() << "the C++ library does not start threads as expected";
        return;
    }
    state_->before = *state_->place;
    replace(state_->place, &refuseThread);
}

CNoMoreThreads::~CNoMoreThreads() {
    if (state_->place) replace(state_->place, state_->before);
}

std::string getSystemThreadName() {
    using Function = HRESULT(WINAPI*)(HANDLE, PWSTR*);
    const auto getThreadDescription = reinterpret_cast<Function>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "GetThreadDescription")));
    if (!getThreadDescription) {
        ADD_FAILURE() << "the system knows no names of threads";
        return {};
    }
    PWSTR text = nullptr;
    EXPECT_TRUE(SUCCEEDED(getThreadDescription(::GetCurrentThread(), &text)));
    const std::string name = kel::String(text).toUTF8();
    ::LocalFree(text);
    return name;
}

std::size_t getThreadNameLimit() { return 1000; }
