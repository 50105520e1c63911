// SPDX-License-Identifier: MIT
/* The entry points of libkelvarin.so, for programs that load it at run time.
 *
 * A host loads the library with dlopen, registers it with DllRegisterServer,
 * looks a class up by programmatic name ("Kelvarin.DateBox") in the per-user
 * registry file, and asks DllGetClassObject for that class's factory. The
 * objects follow the component object model's reference counting: each
 * pointer handed out holds one reference, released with Release.
 *
 * The registry file is $KELVARIN_REGISTRY when that is set, otherwise
 * $XDG_DATA_HOME/kelvarin/registry.json, otherwise
 * ~/.local/share/kelvarin/registry.json. Its form:
 *   { "classes": [ { "progId": "Kelvarin.DateBox", "clsid": "{...}",
 *                    "typeLibrary": "{...}", "library": "/abs/libkelvarin.so",
 *                    "version": "1.0", "OLESelfRegister": true }, ... ] }
 * Records of other libraries, and other keys, are kept as they are.
 *
 * Plain C; every function is safe to call from C++. */
#ifndef KELVARIN_H
#define KELVARIN_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define KELVARIN_API __attribute__((visibility("default")))

/* Results, with the values and meanings of the component object model. */
typedef int32_t KelvarinResult;
#define KELVARIN_S_OK ((KelvarinResult)0)
#define KELVARIN_S_FALSE ((KelvarinResult)1)
#define KELVARIN_E_NOTIMPL ((KelvarinResult)0x80004001u)
#define KELVARIN_E_NOINTERFACE ((KelvarinResult)0x80004002u)
#define KELVARIN_E_POINTER ((KelvarinResult)0x80004003u)
#define KELVARIN_E_FAIL ((KelvarinResult)0x80004005u)
#define KELVARIN_E_UNEXPECTED ((KelvarinResult)0x8000FFFFu)
#define KELVARIN_E_OUTOFMEMORY ((KelvarinResult)0x8007000Eu)
#define KELVARIN_E_INVALIDARG ((KelvarinResult)0x80070057u)
#define KELVARIN_CLASS_E_NOAGGREGATION ((KelvarinResult)0x80040110u)
#define KELVARIN_CLASS_E_CLASSNOTAVAILABLE ((KelvarinResult)0x80040111u)
/* Registration could not update the registry file (see KelvarinLastError). */
#define KELVARIN_SELFREG_E_CLASS ((KelvarinResult)0x80040201u)

#define KELVARIN_SUCCEEDED(r) ((KelvarinResult)(r) >= 0)

typedef struct KelvarinGuid {
    uint32_t data1;
    uint16_t data2;
    uint16_t data3;
    uint8_t data4[8];
} KelvarinGuid;

/* The base interface every object answers. */
static const KelvarinGuid KELVARIN_IID_IUNKNOWN = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
/* The class factory interface, KelvarinClassFactory below. */
static const KelvarinGuid KELVARIN_IID_ICLASSFACTORY = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
/* A control made by a factory, KelvarinControl below. */
static const KelvarinGuid KELVARIN_IID_CONTROL = {
    0xD259F6EE, 0x071D, 0x4D7F, {0xA9, 0x2B, 0x31, 0xBB, 0xA3, 0x49, 0xFD, 0xE8}};

/* ---- Class factory ---------------------------------------------------------- */

typedef struct KelvarinClassFactory KelvarinClassFactory;
typedef struct KelvarinClassFactoryVtbl {
    KelvarinResult (*QueryInterface)(KelvarinClassFactory* self, const KelvarinGuid* iid,
                                     void** object);
    uint32_t (*AddRef)(KelvarinClassFactory* self);
    uint32_t (*Release)(KelvarinClassFactory* self);
    /* A new control; `outer` must be null (no aggregation), `iid` is
     * KELVARIN_IID_IUNKNOWN or KELVARIN_IID_CONTROL. */
    KelvarinResult (*CreateInstance)(KelvarinClassFactory* self, void* outer,
                                     const KelvarinGuid* iid, void** object);
    /* Non-zero keeps the library loaded (DllCanUnloadNow answers S_FALSE)
     * until a matching call with zero. */
    KelvarinResult (*LockServer)(KelvarinClassFactory* self, int32_t lock);
} KelvarinClassFactoryVtbl;
struct KelvarinClassFactory {
    const KelvarinClassFactoryVtbl* vtbl;
};

/* ---- Control ------------------------------------------------------------------ */

typedef struct KelvarinControl KelvarinControl;
typedef struct KelvarinControlVtbl {
    KelvarinResult (*QueryInterface)(KelvarinControl* self, const KelvarinGuid* iid, void** object);
    uint32_t (*AddRef)(KelvarinControl* self);
    uint32_t (*Release)(KelvarinControl* self);
    /* The class name ("DateBox"), UTF-8, valid while the object lives. */
    const char* (*ClassName)(KelvarinControl* self);
    /* The control as a kelvarin::host::Control*, for a C++ host built from
     * the same headers with the same compiler. Owned by this object: the
     * host sites it and drives its life-cycle, Terminate included, before
     * the last Release destroys it. */
    void* (*NativeControl)(KelvarinControl* self);
} KelvarinControlVtbl;
struct KelvarinControl {
    const KelvarinControlVtbl* vtbl;
};

/* ---- Entry points --------------------------------------------------------------- */

/* The factory of class `clsid` as interface `iid` (KELVARIN_IID_ICLASSFACTORY
 * or KELVARIN_IID_IUNKNOWN). CLASS_E_CLASSNOTAVAILABLE for a class this
 * library does not make (an unknown identifier, or the property page). */
KELVARIN_API KelvarinResult DllGetClassObject(const KelvarinGuid* clsid, const KelvarinGuid* iid,
                                              void** object);
/* S_OK when no factory, control or server lock made by the library is alive. */
KELVARIN_API KelvarinResult DllCanUnloadNow(void);
/* Adds or replaces this library's records in the registry file. */
KELVARIN_API KelvarinResult DllRegisterServer(void);
/* Removes this library's records from the registry file. */
KELVARIN_API KelvarinResult DllUnregisterServer(void);
/* Why the calling thread's last failed call failed, UTF-8; "" after a
 * success. Valid until the thread's next call into the library. */
KELVARIN_API const char* KelvarinLastError(void);

typedef KelvarinResult (*KelvarinDllGetClassObjectFn)(const KelvarinGuid*, const KelvarinGuid*,
                                                      void**);
typedef KelvarinResult (*KelvarinDllCanUnloadNowFn)(void);
typedef KelvarinResult (*KelvarinDllRegisterServerFn)(void);
typedef KelvarinResult (*KelvarinDllUnregisterServerFn)(void);
typedef const char* (*KelvarinLastErrorFn)(void);

#ifdef __cplusplus
}
#endif

#endif /* KELVARIN_H */
