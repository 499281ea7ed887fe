#include "platform/windows/pending_messages.h"

#include <windows.h>

#include <algorithm>

namespace kvtdruck {
namespace {

bool isAfter(DWORD time, DWORD moment) {
    return static_cast<LONG>(time - moment) > 0; // the clock starts anew after 49 days
}

} // namespace

// A number of the component's own, since the thread's other messages are the host's.
PendingMessages::PendingMessages() : endMark_(RegisterWindowMessageW(L"KVTDruck.EndOfPass")) {}

// Posted messages are handed out in their order and before all others, so a mark among them ends them exactly.
// Input, painting and timers bear the time.
void PendingMessages::process() {
    if (HIWORD(GetQueueStatus(QS_ALLINPUT)) == 0)
        return;
    const DWORD moment = GetTickCount();
    const auto pass = ++begun_;
    if (!PostThreadMessageW(GetCurrentThreadId(), endMark_, pass, 0))
        return; // the queue is full; the host has enough to do
    MSG message;
    while (ended_ < pass && take(0, 0, 0, message)) {
    }
    takeThoseBefore(moment, PM_QS_INPUT | PM_QS_PAINT, 0, 0);
    takeThoseBefore(moment, 0, WM_TIMER, WM_TIMER);
}

void PendingMessages::takeThoseBefore(unsigned long moment, unsigned kinds, unsigned first, unsigned last) {
    MSG message;
    while (take(kinds, first, last, message) && !isAfter(message.time, moment)) {
    }
}

/// Takes the next message of the kinds (all where 0) and numbers (all where both are 0); false where there is none.
bool PendingMessages::take(unsigned kinds, unsigned first, unsigned last, MSG& message) {
    if (!PeekMessageW(&message, nullptr, first, last, PM_REMOVE | kinds))
        return false;
    if (message.message == WM_QUIT) {
        PostQuitMessage(static_cast<int>(message.wParam)); // the host's own loop has to see it
        return false;
    }
    if (message.hwnd == nullptr && message.message == endMark_) {
        ended_ = std::max(ended_, static_cast<std::uint32_t>(message.wParam));
        return true;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return true;
}

} // namespace kvtdruck
