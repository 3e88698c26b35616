#include "workbook/evaluation/stack_room.h"

#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quorva::workbook {

namespace {

/// The stack of a thread; addresses fall as it fills.
struct Stack {
    std::uintptr_t end = 0;  ///< lowest address
    std::size_t size = 0;
};

Stack stackOfThread() {
    Stack stack;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        void* address = nullptr;
        std::size_t size = 0;
        pthread_attr_getstack(&attributes, &address, &size);
        pthread_attr_destroy(&attributes);
        // Of a stack without a limit no more than this is counted on.
        constexpr std::size_t most = std::size_t{64} << 20;
        stack.size = std::min(size, most);
        stack.end = reinterpret_cast<std::uintptr_t>(address) + (size - stack.size);
    }
    return stack;
}

bool left(std::size_t parts) {
    thread_local const Stack stack = stackOfThread();
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) > stack.end + stack.size / parts;
}

}  // namespace

bool roomForFormulas() { return left(2); }
bool roomForEvaluation() { return left(4); }

}  // namespace quorva::workbook
