// SPDX-License-Identifier: MIT
#include "library/Server.h"

#include <atomic>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include "library/ClassFactory.h"

namespace kelvarin::library {

namespace {

thread_local std::string lastError;

bool SameGuid(const KelvarinGuid& a, const KelvarinGuid& b) noexcept {
    return FromKelvarinGuid(a) == FromKelvarinGuid(b);
}

// Answers QueryInterface for an object offering IUnknown and one interface.
template <typename Self>
KelvarinResult Query(Self* self, const KelvarinGuid* iid, void** object,
                     const KelvarinGuid& ownIid) {
    if (object == nullptr) return KELVARIN_E_POINTER;
    *object = nullptr;
    if (iid == nullptr) return KELVARIN_E_INVALIDARG;
    if (!SameGuid(*iid, KELVARIN_IID_IUNKNOWN) && !SameGuid(*iid, ownIid)) {
        return KELVARIN_E_NOINTERFACE;
    }
    self->vtbl->AddRef(self);
    *object = self;
    return KELVARIN_S_OK;
}

// Reference counting of an object handed out as its interface `Self`.
template <typename Object, typename Self>
std::uint32_t AddRef(Self* self) {
    return ++static_cast<Object*>(self)->refs;
}

template <typename Object, typename Self>
std::uint32_t Release(Self* self) {
    const std::uint32_t left = --static_cast<Object*>(self)->refs;
    if (left == 0) delete static_cast<Object*>(self);
    return left;
}

// A control handed out through a factory. Every one counts as a live object
// of the library until its last reference is released.
struct ControlObject final : KelvarinControl {
    ControlObject(std::unique_ptr<host::Control> c, std::string name);
    ~ControlObject() { ClassRegistry::Instance().RemoveLiveObject(); }
    ControlObject(const ControlObject&) = delete;
    ControlObject& operator=(const ControlObject&) = delete;

    std::atomic<std::uint32_t> refs{1};
    std::unique_ptr<host::Control> control;
    std::string className;
};

ControlObject* AsControl(KelvarinControl* self) { return static_cast<ControlObject*>(self); }

const KelvarinControlVtbl kControlVtbl = {
    [](KelvarinControl* self, const KelvarinGuid* iid, void** object) {
        return Query(self, iid, object, KELVARIN_IID_CONTROL);
    },
    &AddRef<ControlObject, KelvarinControl>,
    &Release<ControlObject, KelvarinControl>,
    [](KelvarinControl* self) -> const char* { return AsControl(self)->className.c_str(); },
    [](KelvarinControl* self) -> void* { return AsControl(self)->control.get(); },
};

ControlObject::ControlObject(std::unique_ptr<host::Control> c, std::string name)
    : KelvarinControl{&kControlVtbl}, control(std::move(c)), className(std::move(name)) {
    ClassRegistry::Instance().AddLiveObject();
}

// Server locks taken through LockServer; each also counts as a live object.
std::atomic<int> serverLocks{0};

struct FactoryObject final : KelvarinClassFactory {
    explicit FactoryObject(const Guid& id);
    ~FactoryObject() { ClassRegistry::Instance().RemoveLiveObject(); }
    FactoryObject(const FactoryObject&) = delete;
    FactoryObject& operator=(const FactoryObject&) = delete;

    std::atomic<std::uint32_t> refs{1};
    Guid clsid;
};

FactoryObject* AsFactory(KelvarinClassFactory* self) { return static_cast<FactoryObject*>(self); }

KelvarinResult CreateInstance(KelvarinClassFactory* self, void* outer, const KelvarinGuid* iid,
                              void** object) noexcept {
    if (object == nullptr) return KELVARIN_E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return KELVARIN_CLASS_E_NOAGGREGATION;
    if (iid == nullptr) return KELVARIN_E_INVALIDARG;
    if (!SameGuid(*iid, KELVARIN_IID_IUNKNOWN) && !SameGuid(*iid, KELVARIN_IID_CONTROL)) {
        return KELVARIN_E_NOINTERFACE;
    }
    try {
        const Guid& clsid = AsFactory(self)->clsid;
        std::unique_ptr<host::Control> control = ClassRegistry::Instance().Create(clsid);
        if (!control) return KELVARIN_CLASS_E_CLASSNOTAVAILABLE;
        std::string name = control->TypeName();
        *object =
            static_cast<KelvarinControl*>(new ControlObject(std::move(control), std::move(name)));
        lastError.clear();
        return KELVARIN_S_OK;
    } catch (const std::bad_alloc&) {
        SetLastError("out of memory");
        return KELVARIN_E_OUTOFMEMORY;
    } catch (const std::exception& e) {
        SetLastError(std::string("the control could not be created: ") + e.what());
        return KELVARIN_E_FAIL;
    } catch (...) {
        SetLastError("the control could not be created");
        return KELVARIN_E_FAIL;
    }
}

KelvarinResult LockServer(KelvarinClassFactory*, std::int32_t lock) noexcept {
    if (lock != 0) {
        ++serverLocks;
        ClassRegistry::Instance().AddLiveObject();
        return KELVARIN_S_OK;
    }
    // An unlock without a lock must not free someone else's object count.
    int held = serverLocks.load();
    do {
        if (held == 0) return KELVARIN_E_UNEXPECTED;
    } while (!serverLocks.compare_exchange_weak(held, held - 1));
    ClassRegistry::Instance().RemoveLiveObject();
    return KELVARIN_S_OK;
}

const KelvarinClassFactoryVtbl kFactoryVtbl = {
    [](KelvarinClassFactory* self, const KelvarinGuid* iid, void** object) {
        return Query(self, iid, object, KELVARIN_IID_ICLASSFACTORY);
    },
    &AddRef<FactoryObject, KelvarinClassFactory>,
    &Release<FactoryObject, KelvarinClassFactory>,
    CreateInstance,
    LockServer,
};

FactoryObject::FactoryObject(const Guid& id) : KelvarinClassFactory{&kFactoryVtbl}, clsid(id) {
    ClassRegistry::Instance().AddLiveObject();
}

}  // namespace

Guid FromKelvarinGuid(const KelvarinGuid& guid) noexcept {
    Guid g;
    g.data1 = guid.data1;
    g.data2 = guid.data2;
    g.data3 = guid.data3;
    for (std::size_t i = 0; i < g.data4.size(); ++i) g.data4[i] = guid.data4[i];
    return g;
}

KelvarinGuid ToKelvarinGuid(const Guid& guid) noexcept {
    KelvarinGuid g{guid.data1, guid.data2, guid.data3, {}};
    for (std::size_t i = 0; i < guid.data4.size(); ++i) g.data4[i] = guid.data4[i];
    return g;
}

KelvarinResult GetClassObject(const KelvarinGuid* clsid, const KelvarinGuid* iid,
                              void** object) noexcept {
    if (object == nullptr) return KELVARIN_E_POINTER;
    *object = nullptr;
    if (clsid == nullptr || iid == nullptr) return KELVARIN_E_INVALIDARG;
    const Guid id = FromKelvarinGuid(*clsid);
    try {
        const ClassRegistry& registry = ClassRegistry::Instance();
        if (!registry.IsCreatable(id)) {
            const ClassInfo* info = registry.Find(id);
            SetLastError(info == nullptr
                             ? "no class " + id.ToString() + " in this library"
                             : "the class " + std::string(info->name) + " cannot be created");
            return KELVARIN_CLASS_E_CLASSNOTAVAILABLE;
        }
        if (!SameGuid(*iid, KELVARIN_IID_IUNKNOWN) && !SameGuid(*iid, KELVARIN_IID_ICLASSFACTORY)) {
            return KELVARIN_E_NOINTERFACE;
        }
        *object = static_cast<KelvarinClassFactory*>(new FactoryObject(id));
        lastError.clear();
        return KELVARIN_S_OK;
    } catch (const std::bad_alloc&) {
        SetLastError("out of memory");
        return KELVARIN_E_OUTOFMEMORY;
    }
}

KelvarinResult CanUnloadNow() noexcept {
    return ClassRegistry::Instance().LiveObjects() == 0 ? KELVARIN_S_OK : KELVARIN_S_FALSE;
}

const char* LastError() noexcept { return lastError.c_str(); }

void SetLastError(std::string_view message) noexcept {
    try {
        lastError.assign(message);
    } catch (...) {
        lastError.clear();  // no memory even for the message: at least no stale one
    }
}

}  // namespace kelvarin::library
