#include "ovwcmn/vxwutl.h"

#include <atomic>

namespace {

std::atomic<VXABORTPROC> s_abort = nullptr;
std::atomic<VXABORTPROC> s_abortEx = nullptr;

int ask(const std::atomic<VXABORTPROC>& procedure) {
    const VXABORTPROC answer = procedure;
    return answer ? answer() : 0;
}

} // namespace

void vxSetAbortProc(VXABORTPROC abort, VXABORTPROC abortEx) {
    s_abort = abort;
    s_abortEx = abortEx;
}

int vxAbort() { return ask(s_abort); }

int vxAbortEx() { return ask(s_abortEx); }
