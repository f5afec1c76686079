#pragma once

#include <Sanitizers.h>

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <functional>
#include <set>
#include <string>

/** Runs an operation in a process of its own and stops it before and after each of its system calls, to kill it there
 * or to make the call fail. An operation may become another program. */
class TracedProcess {
public:
    enum Outcome { Succeeded = 0, FailedWithMessage = 1, FailedSilently = 2, Killed = 3, NotTraced = 4, Broken = 5 };

    /** One stop. Calls are counted from 0; those that only manage memory or the process are left out. */
    struct Stop {
        long call = 0;  ///< the number of the system call (SYS_write, …)
        int index = 0;  ///< the how manieth it is
        bool isEntry = false;
        unsigned long arguments[3] = {};
        pid_t process = -1;

        /** The text that an argument points to, as far as it can be read; empty if it is no pointer. */
        std::string text(int argument) const {
            std::string result(256, '\0');
            iovec here{result.data(), result.size()};
            iovec there{reinterpret_cast<void*>(arguments[argument]), result.size()};
            // What lies before the end of a page may be all that can be read.
            const auto room = 4096 - arguments[argument] % 4096;
            there.iov_len = room < result.size() ? room : result.size();
            const ssize_t count = arguments[argument] < 4096 ? -1 : ::process_vm_readv(process, &here, 1, &there, 1, 0);
            result.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
            return result.substr(0, result.find('\0'));
        }
    };
    /** What is to happen at a stop. */
    struct Action {
        bool kill = false;
        int error = 0;             ///< at the entry: the call is not made and gives this errno
        unsigned long atMost = 0;  ///< at the entry of a write: only so many bytes are taken
    };

    /** The operation returns success, and whether it gave a message. Its calls are counted from its beginning to its
     * end. */
    using Operation = std::function<Outcome()>;
    using Decision = std::function<Action(const Stop&)>;

    static Outcome run(const Operation& operation, const Decision& decide) {
        const pid_t child = ::fork();
        if (child == 0) {
            if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
                ::_exit(NotTraced);
            }
            ::raise(SIGSTOP);
            ::syscall(SYS_getppid);
            const Outcome outcome = operation();
            ::syscall(SYS_getppid);
            ::_exit(outcome);
        }
        return child > 0 ? follow(child, decide) : Broken;
    }

    /** Calls that have nothing to do with files. */
    static bool isFileCall(long call) {
        static const std::set<long> others{SYS_brk,          SYS_mmap,         SYS_munmap,       SYS_mprotect,
                                           SYS_madvise,      SYS_mremap,       SYS_getpid,       SYS_futex,
                                           SYS_rt_sigaction, SYS_sched_yield,  SYS_rt_sigreturn, SYS_rt_sigprocmask,
                                           SYS_gettid,       SYS_clock_gettime};
        return !others.contains(call);
    }

private:
    TracedProcess(pid_t child, const Decision& decide) : mChild(child), mDecide(decide) {}

    static Outcome follow(pid_t child, const Decision& decide) {
        int status = 0;
        if (::waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) {
            return WIFEXITED(status) ? static_cast<Outcome>(WEXITSTATUS(status)) : Broken;
        }
        ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
        return TracedProcess(child, decide).followToItsEnd();
    }

    Outcome followToItsEnd() {
        int status = 0;
        int signal = 0;
        for (;;) {
            ::ptrace(PTRACE_SYSCALL, mChild, nullptr, signal);
            signal = 0;
            if (::waitpid(mChild, &status, 0) != mChild) {
                return Broken;
            }
            if (WIFEXITED(status)) {
                return static_cast<Outcome>(WEXITSTATUS(status));
            }
            if (WIFSIGNALED(status)) {
                return WTERMSIG(status) == SIGKILL ? Killed : Broken;
            }
            if (WSTOPSIG(status) == (SIGTRAP | 0x80)) {
                stopAtCall();
            } else {
                signal = WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
            }
        }
    }

    void stopAtCall() {
        user_regs_struct registers{};
        __ptrace_syscall_info info{};
        ::ptrace(PTRACE_GET_SYSCALL_INFO, mChild, sizeof(info), &info);
        ::ptrace(PTRACE_GETREGS, mChild, nullptr, &registers);
        const bool isEntry = info.op == PTRACE_SYSCALL_INFO_ENTRY;
        const auto call = static_cast<long>(registers.orig_rax);
        if (mPendingError != 0 && !isEntry) {
            registers.rax = static_cast<unsigned long>(-mPendingError);
            ::ptrace(PTRACE_SETREGS, mChild, nullptr, &registers);
            mPendingError = 0;
            ++mIndex;
        } else if (call == SYS_getppid) {
            mMarkers += isEntry ? 0 : 1;
        } else if (mMarkers == 1 && !isOfSanitizer(call, isEntry) && isFileCall(call)) {
            const Action action =
                mDecide({call, mIndex, isEntry, {registers.rdi, registers.rsi, registers.rdx}, mChild});
            mIndex += isEntry ? 0 : 1;
            act(action, isEntry, registers);
        }
    }

    /** The sanitizer for undefined behaviour finds out whether memory may be read by writing it to a pipe of its own: a
     * pipe, a write and two calls of close that are none of the operation's. */
    bool isOfSanitizer(long call, bool isEntry) {
        constexpr int PROBE_CALLS = 4;
        if (SANITIZED && mProbeCalls == 0 && isEntry && (call == SYS_pipe || call == SYS_pipe2)) {
            mProbeCalls = PROBE_CALLS;
        }
        const bool isProbe = mProbeCalls > 0;
        mProbeCalls -= isProbe && !isEntry ? 1 : 0;
        return isProbe;
    }

    void act(const Action& action, bool isEntry, user_regs_struct& registers) {
        if (action.kill) {
            ::kill(mChild, SIGKILL);
        } else if (isEntry && action.error != 0) {
            mPendingError = action.error;
            registers.orig_rax = static_cast<unsigned long>(-1);
            ::ptrace(PTRACE_SETREGS, mChild, nullptr, &registers);
        } else if (isEntry && action.atMost > 0 && registers.rdx > action.atMost) {
            registers.rdx = action.atMost;
            ::ptrace(PTRACE_SETREGS, mChild, nullptr, &registers);
        }
    }

    pid_t mChild;
    const Decision& mDecide;
    int mMarkers = 0;  // the operation lies between two calls of getppid()
    int mIndex = 0;
    int mProbeCalls = 0;    // of the sanitizer, still to come
    int mPendingError = 0;  // what the call that is not made is to give
};
