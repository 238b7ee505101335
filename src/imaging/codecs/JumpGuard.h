#pragma once

#include <csetjmp>

namespace kelvara {

/// Where a C library lands that reports fatal errors by a jump, which never leaves `guarded`.
class JumpGuard {
public:
    /// Runs `call`, which may call the library; false when the library gave up, now or before. As an error
    /// jumps over it, `call` must own nothing: captures by reference and plain locals only.
    template <typename Call> bool guarded(Call call) {
        if (m_hasFailed || setjmp(m_jump) != 0) {
            m_hasFailed = true;
            return false;
        }
        call();
        return true;
    }

protected:
    /// From within a `guarded` call.
    [[noreturn]] void fail() {
        std::longjmp(m_jump, 1); // NOLINT: the library's own way out
    }
    void refuse() { m_hasFailed = true; }

private:
    std::jmp_buf m_jump{};
    bool m_hasFailed = false;
};

} // namespace kelvara
