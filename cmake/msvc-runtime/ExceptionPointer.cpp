// Replaces the functions of msvcp140.dll to which libc++ forwards std::exception_ptr. Those of Wine
// throw the kept exception itself, which its last pointer can destroy before the handler has seen it.
// Here, as with Microsoft's, each throw makes a copy of its own.
//
// A std::exception_ptr is two pointers, of which the second one is not used.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <malloc.h>
#include <new>

namespace {

/// Where a base is inside an object.
struct Displacement {
    int member;
    int table;
    int entry;
};

/// One of the types by which an exception can be caught.
struct CatchableType {
    unsigned properties;
    const void* type;
    Displacement displacement;
    unsigned size;
    void* copy;
};
constexpr unsigned isSimple = 1;       // copied as bytes
constexpr unsigned hasVirtualBases = 4; // the copy constructor takes a flag: whether it makes them

/// The types of an exception, the type of the object first.
struct CatchableTypes {
    int count;
    const CatchableType* types[1];
};

/// What the compiler notes about the exception of a throw expression.
struct ThrowInfo {
    unsigned attributes;
    void(__thiscall* destroy)(void* object);
    void* compatibility;
    const CatchableTypes* types;
};

/// The system's record of an exception.
struct Record {
    unsigned code;
    unsigned flags;
    const Record* next;
    void* address;
    unsigned count;
    struct {
        unsigned magic;
        void* object;
        const ThrowInfo* info;
    } arguments;
};
constexpr unsigned isOfCxx = 0xE06D7363;

/// A kept copy of an exception, which follows this head.
struct alignas(8) Kept { // as malloc aligns
    std::atomic<int> references{1};
    const ThrowInfo* info;

    explicit Kept(const ThrowInfo* thrown) : info(thrown) {}
    void* object() { return this + 1; }
};

const CatchableType& typeOf(const ThrowInfo* info) {
    return *info->types->types[0];
}

/// Makes a copy of an exception object in the given place.
void copyTo(void* place, const void* object, const ThrowInfo* info) {
    const CatchableType& type = typeOf(info);
    if ((type.properties & isSimple) != 0 || type.copy == nullptr) {
        std::memcpy(place, object, type.size);
    } else if ((type.properties & hasVirtualBases) != 0) {
        using Constructor = void(__thiscall*)(void*, const void*, int isComplete);
        reinterpret_cast<Constructor>(type.copy)(place, object, 1);
    } else {
        using Constructor = void(__thiscall*)(void*, const void*);
        reinterpret_cast<Constructor>(type.copy)(place, object);
    }
}

/// Returns a new copy of an exception, or null if the memory for it or for a part of it is missing.
Kept* keep(const void* object, const ThrowInfo* info) {
    void* block = std::malloc(sizeof(Kept) + typeOf(info).size);
    if (block == nullptr) {
        return nullptr;
    }
    Kept* kept = new (block) Kept(info);
    try {
        copyTo(kept->object(), object, info);
    } catch (...) {
        std::free(block);
        return nullptr;
    }
    return kept;
}

void release(Kept* kept) {
    if (kept == nullptr || --kept->references != 0) {
        return;
    }
    if (kept->info->destroy != nullptr) {
        kept->info->destroy(kept->object());
    }
    std::free(kept);
}

Kept*& keptBy(void* pointer) {
    return *static_cast<Kept**>(pointer);
}

Kept* keptBy(const void* pointer) {
    return *static_cast<Kept* const*>(pointer);
}

void set(void* pointer, Kept* kept) {
    static_cast<void**>(pointer)[1] = nullptr;
    keptBy(pointer) = kept;
}

} // namespace

extern "C" {
Record** __cdecl __current_exception();
[[noreturn]] void __stdcall _CxxThrowException(void* object, const ThrowInfo* info);
}

namespace {

/// Returns what is kept where the memory for a copy is missing. It is made when the program starts.
Kept* outOfMemory() {
    try {
        throw std::bad_alloc();
    } catch (...) {
        const auto& thrown = (*__current_exception())->arguments;
        return keep(thrown.object, thrown.info);
    }
}
Kept* const spare = outOfMemory();

void keepOrSpare(void* pointer, const void* object, const ThrowInfo* info) {
    Kept* kept = keep(object, info);
    if (kept == nullptr) {
        if (spare == nullptr) {
            std::abort(); // also without memory when the program started
        }
        ++spare->references;
        kept = spare;
    }
    set(pointer, kept);
}

} // namespace

void __cdecl __ExceptionPtrCreate(void* pointer) {
    set(pointer, nullptr);
}

void __cdecl __ExceptionPtrDestroy(void* pointer) {
    release(keptBy(pointer));
}

void __cdecl __ExceptionPtrCopy(void* pointer, const void* from) {
    Kept* kept = keptBy(from);
    if (kept != nullptr) {
        ++kept->references;
    }
    set(pointer, kept);
}

void __cdecl __ExceptionPtrAssign(void* pointer, const void* from) {
    Kept* former = keptBy(pointer);
    __ExceptionPtrCopy(pointer, from);
    release(former);
}

bool __cdecl __ExceptionPtrCompare(const void* one, const void* other) {
    return keptBy(one) == keptBy(other);
}

bool __cdecl __ExceptionPtrToBool(const void* pointer) {
    return keptBy(pointer) != nullptr;
}

void __cdecl __ExceptionPtrSwap(void* one, void* other) {
    Kept* former = keptBy(one);
    keptBy(one) = keptBy(other);
    keptBy(other) = former;
}

void __cdecl __ExceptionPtrCurrentException(void* pointer) {
    const Record* record = *__current_exception();
    if (record == nullptr) {
        set(pointer, nullptr);
        return;
    }
    if (record->code != isOfCxx) {
        std::abort(); // handlers of C++ exceptions do not get others with /EHsc
    }
    keepOrSpare(pointer, record->arguments.object, record->arguments.info);
}

void __cdecl __ExceptionPtrCopyException(void* pointer, const void* object, const void* info) {
    keepOrSpare(pointer, object, static_cast<const ThrowInfo*>(info));
}

// The handler destroys the copy that is thrown. Until then the stack of this call is kept.
[[noreturn]] void __cdecl __ExceptionPtrRethrow(const void* pointer) {
    Kept* kept = keptBy(pointer);
    if (kept == nullptr) {
        throw std::bad_exception();
    }
    const ThrowInfo* info = kept->info;
    void* copy = _alloca(typeOf(info).size);
    copyTo(copy, kept->object(), info);
    _CxxThrowException(copy, info);
}
