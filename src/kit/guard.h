// No exception of the library's own leaves it: whatever Windows or a host calls runs through here.
//
// The library throws what its containers throw, when memory runs out, and nothing else. The function that was called
// then fails as it is documented to fail: an export as if its dialog could not be shown, a reader without a picture, a
// dialog whose setting up is not finished by ending; a later message of a dialog is passed over. What a host's callback
// throws goes on to whoever called.
#pragma once

#include <windows.h>

#include <new>
#include <stdexcept>
#include <type_traits>

template <typename Result, typename Work>
Result Guarded(Result failure, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) { return failure; } catch (const std::length_error&) {  // longer than any memory
        return failure;
    }
}

// A dialog, hook or window procedure as Windows gets it.
template <typename Result, Result(CALLBACK* procedure)(HWND, UINT, WPARAM, LPARAM)>
Result CALLBACK GuardedProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    bool failed = true;
    const Result result = Guarded(Result{0}, [&] {
        const Result answer = procedure(window, message, wParam, lParam);
        failed = false;
        return answer;
    });
    if (failed && message == WM_INITDIALOG && !(GetWindowLongPtrA(window, GWL_STYLE) & WS_CHILD)) EndDialog(window, 0);
    return result;
}
