// Runs the tests, all of them or, with --folder=NAME, those whose source stands in tests/NAME.
//
// A selection that matches no test is a failure, so that a renamed folder or suite cannot pass by running nothing.
#ifdef _WIN32
#include <windows.h>

#include <commctrl.h>
#endif
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

// A gtest filter with every test of the folder; empty when there is none.
static std::string FilterOfFolder(const std::string& folder) {
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    std::string filter;
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const testing::TestInfo& test = *suite.GetTestInfo(j);
            std::string path = test.file();
            std::replace(path.begin(), path.end(), '\\', '/');
            if (path.find("tests/" + folder + "/") == std::string::npos) continue;
            filter += std::string(suite.name()) + "." + test.name() + ":";
        }
    }
    return filter;
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
#ifdef _WIN32
    SetProcessDPIAware();  // as a CAD host is
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
#endif
    static const char kFolder[] = "--folder=";
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], kFolder, sizeof(kFolder) - 1) != 0) {
            std::fprintf(stderr, "kwtests: unknown argument %s\n", argv[i]);
            return 2;
        }
        testing::GTEST_FLAG(filter) = FilterOfFolder(argv[i] + sizeof(kFolder) - 1);
    }
    const int failed = RUN_ALL_TESTS();
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    if (all.test_to_run_count() == 0 && !testing::GTEST_FLAG(list_tests)) {
        std::fprintf(stderr, "kwtests: no test matches the selection\n");
        return 3;
    }
    return failed;
}
