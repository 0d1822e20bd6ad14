// Read before GoogleTest's headers by compilers that have no std::mutex (MinGW with Windows threads before GCC 13).
//
// GoogleTest's own locks need only Windows there, all but this class, which its thread helper waits on.
#pragma once

#ifdef __cplusplus
#include <windows.h>

namespace testing {
namespace internal {

class Notification {
public:
    Notification() : event(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
    ~Notification() { CloseHandle(event); }
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;
    void Notify() { SetEvent(event); }
    void WaitForNotification() { WaitForSingleObject(event, INFINITE); }

private:
    const HANDLE event;
};

}  // namespace internal
}  // namespace testing

#endif
