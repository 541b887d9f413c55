// What the compiler's run-time support asks of the system's threads: a few functions of <pthread.h>, and the end of
// thread_local variables. Exceptions, thread_local variables and function-local statics all come down to these.
//
// The library that usually has them serves programs, not modules that come and go: at each unload it leaves a TLS
// index, a thread's handle and memory behind, and a thread_local variable with a destructor keeps the module loaded
// until its thread ends. Here everything that belongs to a thread hangs on one record, which goes when the thread ends
// or when the module is unloaded. Should the run-time support ever ask for a function that is not here, linking fails
// over doubly defined ones.

#include <cxxabi.h>
#include <pthread.h>
#include <windows.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <memory>
#include <new>
#include <utility>

#include "host/com/dispatch_interface.h"

namespace __gnu_cxx {
/// Frees the memory that the run-time support keeps for exceptions when there is no other. Declared in no header.
void __freeres();
}  // namespace __gnu_cxx

namespace corvane {
namespace {

// One lock guards all that is here. It is held for moments only, never while anybody else's function runs.
SRWLOCK guard = SRWLOCK_INIT;
CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;

class Guarded {
public:
    Guarded() noexcept { AcquireSRWLockExclusive(&guard); }
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;
    ~Guarded() { ReleaseSRWLockExclusive(&guard); }

    template <typename Condition>
    void waitUntil(Condition condition) noexcept {
        while (!condition()) SleepConditionVariableSRW(&changed, &guard, INFINITE, 0);
    }
};

// The states of a mutex; what the header initialises one with is another value and free as well.
constexpr pthread_mutex_t mutexFree = PTHREAD_MUTEX_INITIALIZER;
constexpr pthread_mutex_t mutexHeld = 1;

enum OnceState : pthread_once_t { onceUntouched = PTHREAD_ONCE_INIT, onceRunning, onceDone };

template <typename Result, typename First, typename... Others>
First firstParameterOf(Result (*)(First, Others...));

// Called as member functions are, which for 32 bits is a convention of its own.
using ObjectDestructor = decltype(firstParameterOf(&__cxxabiv1::__cxa_thread_atexit));
using ValueDestructor = void (*)(void*);

// More than the run-time support creates.
constexpr std::size_t maximumKeys = 4;
std::array<ValueDestructor, maximumKeys> keyDestructors{};
pthread_key_t keyCount = 0;

/// A thread_local object that is to be destroyed.
struct ThreadExit {
    ObjectDestructor destructor;
    void* object;
    std::unique_ptr<ThreadExit> earlier;
};

/// What belongs to one thread.
class ThreadRecord {
public:
    ThreadRecord() noexcept : next_(std::exchange(first, this)) {
        if (next_ != nullptr) next_->link_ = &next_;
    }
    ThreadRecord(const ThreadRecord&) = delete;
    ThreadRecord& operator=(const ThreadRecord&) = delete;
    ~ThreadRecord() {
        while (exits) {
            const std::unique_ptr<ThreadExit> last = std::move(exits);
            exits = std::move(last->earlier);
            last->destructor(last->object);
        }
        for (std::size_t i = 0; i < maximumKeys; ++i) {
            void* const value = std::exchange(values[i], nullptr);
            if (value != nullptr && keyDestructors[i] != nullptr) keyDestructors[i](value);
        }
        const Guarded guarded;
        *link_ = next_;
        if (next_ != nullptr) next_->link_ = link_;
    }

    /// Null when the thread has none yet.
    static ThreadRecord* present() noexcept {
        const DWORD known = index.load(std::memory_order_acquire);
        return known == TLS_OUT_OF_INDEXES ? nullptr : static_cast<ThreadRecord*>(TlsGetValue(known));
    }
    /// Null when there is no memory for one.
    static ThreadRecord* make() noexcept {
        if (ThreadRecord* const already = present()) return already;
        const Guarded guarded;
        if (index == TLS_OUT_OF_INDEXES) index = TlsAlloc();
        if (index == TLS_OUT_OF_INDEXES) return nullptr;
        auto* const record = new (std::nothrow) ThreadRecord;
        TlsSetValue(index, record);
        return record;
    }
    static void endThread() noexcept {
        ThreadRecord* const record = present();
        if (record == nullptr) return;
        delete record;
        TlsSetValue(index, nullptr);
    }
    /// For the module's last moment, when no other thread is in it.
    static void endModule() noexcept {
        while (first != nullptr) delete first;
        if (index != TLS_OUT_OF_INDEXES) TlsFree(index.exchange(TLS_OUT_OF_INDEXES));
    }

    std::array<void*, maximumKeys> values{};
    std::unique_ptr<ThreadExit> exits;

private:
    static inline std::atomic<DWORD> index{TLS_OUT_OF_INDEXES};
    static inline ThreadRecord* first = nullptr;

    ThreadRecord* next_;
    ThreadRecord** link_ = &first;
};

}  // namespace
}  // namespace corvane

using namespace corvane;

extern "C" {

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* processEnds) {
    if (reason == DLL_THREAD_DETACH) ThreadRecord::endThread();
    // When the process ends its memory goes with it, and threads that held something were ended where they stood.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        DispatchInterface::forgetAll();
        ThreadRecord::endModule();
        __gnu_cxx::__freeres();
    }
    return TRUE;
}

int __cxxabiv1::__cxa_thread_atexit(ObjectDestructor destructor, void* object, void*) noexcept {
    ThreadRecord* const record = ThreadRecord::make();
    if (record == nullptr) return ENOMEM;
    auto* const added = new (std::nothrow) ThreadExit{destructor, object, nullptr};
    if (added == nullptr) return ENOMEM;
    added->earlier = std::exchange(record->exits, std::unique_ptr<ThreadExit>(added));
    return 0;
}

int pthread_key_create(pthread_key_t* key, ValueDestructor destructor) {
    const Guarded guarded;
    if (keyCount == maximumKeys) return EAGAIN;
    *key = keyCount++;
    keyDestructors[*key] = destructor;
    return 0;
}

void* pthread_getspecific(pthread_key_t key) {
    const ThreadRecord* const record = ThreadRecord::present();
    return record == nullptr ? nullptr : record->values[key];
}

int pthread_setspecific(pthread_key_t key, const void* value) {
    ThreadRecord* const record = ThreadRecord::make();
    if (record == nullptr) return ENOMEM;
    record->values[key] = const_cast<void*>(value);
    return 0;
}

int pthread_once(pthread_once_t* once, void (*function)()) {
    std::atomic_ref<pthread_once_t> state(*once);
    if (state.load(std::memory_order_acquire) == onceDone) return 0;
    {
        Guarded guarded;
        guarded.waitUntil([&] { return state != onceRunning; });
        if (state == onceDone) return 0;
        state = onceRunning;
    }
    function();
    {
        const Guarded guarded;
        state = onceDone;
    }
    WakeAllConditionVariable(&changed);
    return 0;
}

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t*) {
    *mutex = mutexFree;
    return 0;
}

int pthread_mutex_destroy(pthread_mutex_t*) { return 0; }

int pthread_mutex_lock(pthread_mutex_t* mutex) {
    Guarded guarded;
    guarded.waitUntil([&] { return *mutex != mutexHeld; });
    *mutex = mutexHeld;
    return 0;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) {
    {
        const Guarded guarded;
        *mutex = mutexFree;
    }
    WakeAllConditionVariable(&changed);
    return 0;
}

// A condition counts how often it was signalled.
int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    Guarded guarded;
    const pthread_cond_t seen = *condition;
    *mutex = mutexFree;
    WakeAllConditionVariable(&changed);
    guarded.waitUntil([&] { return *condition != seen && *mutex != mutexHeld; });
    *mutex = mutexHeld;
    return 0;
}

int pthread_cond_broadcast(pthread_cond_t* condition) {
    {
        const Guarded guarded;
        ++*condition;
    }
    WakeAllConditionVariable(&changed);
    return 0;
}
}
