// SPDX-License-Identifier: MIT
// The exported entry points of libkelvarin.so. No exception crosses them.
#include <kelvarin/Kelvarin.h>

#include <exception>

#include "library/Registration.h"
#include "library/Server.h"

namespace {

using namespace kelvarin::library;

template <typename Work>
KelvarinResult Registering(Work work) noexcept {
    try {
        work();
        SetLastError("");
        return KELVARIN_S_OK;
    } catch (const std::exception& e) {
        SetLastError(e.what());
    } catch (...) {
        SetLastError("registration failed");
    }
    return KELVARIN_SELFREG_E_CLASS;
}

}  // namespace

extern "C" {

KELVARIN_API KelvarinResult DllGetClassObject(const KelvarinGuid* clsid, const KelvarinGuid* iid,
                                              void** object) {
    return GetClassObject(clsid, iid, object);
}

KELVARIN_API KelvarinResult DllCanUnloadNow(void) { return CanUnloadNow(); }

KELVARIN_API KelvarinResult DllRegisterServer(void) {
    return Registering([] { RegisterClasses(RegistryFilePath(), LoadedLibraryPath()); });
}

KELVARIN_API KelvarinResult DllUnregisterServer(void) {
    return Registering([] { UnregisterClasses(RegistryFilePath()); });
}

KELVARIN_API const char* KelvarinLastError(void) { return LastError(); }

}  // extern "C"
