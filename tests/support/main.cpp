// Runs the tests, all of them or, with --folder=NAME, those whose source stands in tests/NAME.
//
// A selection that matches no test is a failure, so that a renamed folder or suite cannot pass by running nothing.
// A test that hangs ends the program with a message that names it.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

static constexpr DWORD kTestMilliseconds = 200000;  // one test; the runner ends the whole program later

// A gtest filter with every test of the folder; empty when there is none.
static std::string FilterOfFolder(const std::string& folder) {
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    std::string filter;
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const testing::TestInfo& test = *suite.GetTestInfo(j);
            std::string path = test.file();
            for (char& c : path) c = c == '\\' ? '/' : c;
            if (path.find("tests/" + folder + "/") == std::string::npos) continue;
            filter += (filter.empty() ? "" : ":") + std::string(suite.name()) + "." + test.name();
        }
    }
    return filter;
}

// Tells the watchdog which test runs and that one goes on.
struct Heartbeat : testing::EmptyTestEventListener {
    volatile LONG beats = 0;
    char name[128] = "";
    void OnTestStart(const testing::TestInfo& test) override {
        std::snprintf(name, sizeof(name), "%s.%s", test.test_suite_name(), test.name());
        InterlockedIncrement(&beats);
    }
};

static DWORD WINAPI Watchdog(void* parameter) {
    auto& heartbeat = *static_cast<Heartbeat*>(parameter);
    for (LONG seen = -1; seen != heartbeat.beats;) {
        seen = heartbeat.beats;
        Sleep(kTestMilliseconds);
    }
    std::fprintf(stderr, "kwtests: %s hangs\n", heartbeat.name);
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), 4);
    return 0;
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    static const char kFolder[] = "--folder=";
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], kFolder, sizeof(kFolder) - 1) != 0) {
            std::fprintf(stderr, "kwtests: unknown argument %s\n", argv[i]);
            return 2;
        }
        testing::GTEST_FLAG(filter) = FilterOfFolder(argv[i] + sizeof(kFolder) - 1);
    }
    auto* heartbeat = new Heartbeat;  // gtest deletes it, when the watchdog no longer counts
    testing::UnitTest::GetInstance()->listeners().Append(heartbeat);
    CloseHandle(CreateThread(nullptr, 0, Watchdog, heartbeat, 0, nullptr));
    const int failed = RUN_ALL_TESTS();
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    if (all.test_to_run_count() == 0 && !testing::GTEST_FLAG(list_tests)) {
        std::fprintf(stderr, "kwtests: no test matches the selection\n");
        return 3;
    }
    return failed;
}
