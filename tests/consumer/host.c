/* A host as others write it: includes the header, links an import library and finds the DLL's exports by it.
 * Built as C89 and as C++, with and without windows.h before the library's header. */
#ifdef WINDOWS_FIRST
#include <windows.h>
#endif
#include <kwdialogs.h>

#include <stdio.h>

#define CHECK(condition) \
    if (!(condition)) return printf("not true: %s\n", #condition), 1

int main(void) {
    unsigned int(WINAPI* volatile selectDirectory)(HWND, const char*, char*) = kwSelectDirectryName;

    CHECK(selectDirectory != NULL); /* it would open a dialog */
    CHECK(kwSelectFileGUI(1) == 0);
    CHECK(kwSelectFileGUI(-1) == 1);
    CHECK(kwSelectFileName(NULL, KW_FILE_OPEN, 1, NULL) == 0);
    CHECK(kwDlgBoxCtrl(NULL, "NO_SUCH_TEMPLATE", NULL, NULL, 0, NULL) == -1);
    return 0;
}
