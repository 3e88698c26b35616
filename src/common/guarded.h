// The barrier at the module's edge: nothing throws into the host.
#pragma once

namespace quorva {

/// The result of `body`, or `fallback` when it throws (out of memory, in practice).
template <class Body, class Result>
Result guarded(Body&& body, Result fallback) noexcept {
    try {
        return body();
    } catch (...) {
        return fallback;
    }
}

template <class Body>
void guarded(Body&& body) noexcept {
    try {
        body();
    } catch (...) {  // a table that could not be built is left as it was
    }
}

}  // namespace quorva
