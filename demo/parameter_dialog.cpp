#include "parameter_dialog.h"

#include <cstdio>

#include "kwdialogs.h"
#include "resource.h"

namespace {

template <size_t kSize>
const char* LoadText(UINT id, char (&text)[kSize]) {
    if (!LoadStringA(GetModuleHandleA(nullptr), id, text, static_cast<int>(kSize))) text[0] = '\0';
    return text;
}

// A list whose entries stand one after another; '|' ends an entry in the string table.
template <size_t kSize>
const char* LoadList(UINT id, char (&text)[kSize]) {
    LoadText(id, text);
    for (char *c = text, *next; *c; c = next) {
        next = CharNextA(c);
        if (*c == '|') *c = '\0';
    }
    return text;
}

}  // namespace

int EditParameters(HWND owner, MachiningParameters* p) {
    char machine[64], machineFormat[64], finishes[128] = "", tools[128] = "", coolant[64], carbide[64];
    LoadText(IDS_MACHINE, machine);
    LoadText(IDS_MACHINE_FORMAT, machineFormat);
    LoadList(IDS_FINISHES, finishes);
    LoadList(IDS_TOOL_KINDS, tools);
    LoadText(IDS_COOLANT, coolant);
    LoadText(IDS_CARBIDE, carbide);

    constexpr DWORD kSteppedField = KW_KIND_EDIT | KW_FLAG_SPIN;
    DialogItem cutting[] = {
        {IDC_SPEED, kSteppedField | KW_VALUE_INT16, &p->speed, 5, 400, nullptr},
        {IDC_FEED, KW_KIND_EDIT | KW_VALUE_DOUBLE, &p->feed, 0.01, 3, "%.2lf"},
        {IDC_DEPTH, kSteppedField | KW_VALUE_DOUBLE, &p->depth, 0, 25, nullptr},
        {IDC_ANGLE, KW_KIND_EDIT | KW_VALUE_DOUBLE, &p->angle, 0, 90, "%.4lf"},
        {IDC_FINISH, KW_KIND_RADIO | KW_VALUE_INT32, &p->finish, 0, 3, finishes},
        {IDC_COOLANT, KW_KIND_CHECK | KW_VALUE_INT8, &p->coolant, 0, 0, coolant},
    };
    DialogItem tool[] = {
        {IDC_TOOL_KIND, KW_KIND_COMBO | KW_VALUE_INT32, &p->toolKind, 0, 4, tools},
        {IDC_DIAMETER, kSteppedField | KW_VALUE_DOUBLE, &p->diameter, 0.1, 200, nullptr},
        {IDC_TEETH, kSteppedField | KW_VALUE_INT8, &p->teeth, 1, 12, nullptr},
        {IDC_LENGTH, kSteppedField | KW_VALUE_FLOAT, &p->length, 10, 400, "%.1lf"},
        {IDC_CARBIDE, KW_KIND_CHECK | KW_VALUE_INT32, &p->carbide, 0, 0, carbide},
    };
    PageDescriptor pages[] = {
        {nullptr, MAKEINTRESOURCEA(IDD_CUTTING_PAGE), nullptr, ARRAYSIZE(cutting), cutting},
        {nullptr, MAKEINTRESOURCEA(IDD_TOOL_PAGE), nullptr, ARRAYSIZE(tool), tool},
    };
    DialogItem items[] = {
        {IDC_PART, KW_KIND_EDIT | KW_VALUE_TEXT, p->part, 0, sizeof(p->part), nullptr},
        {IDC_MACHINE, KW_KIND_LABEL | KW_VALUE_TEXT, machine, 0, 0, machineFormat},
        {IDC_PAGES, KW_KIND_PAGES | KW_VALUE_PAGES | KW_FLAG_KEEP_PAGE, pages, p->page, ARRAYSIZE(pages), nullptr},
        {IDC_SIMULATE, KW_KIND_BUTTON | KW_VALUE_ACCEPT, nullptr, 0, 0, nullptr},
        {IDC_SKIP, KW_KIND_BUTTON | KW_VALUE_DISMISS, nullptr, 0, 0, nullptr},
    };
    const int result = kwDlgBoxCtrl(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_PARAMETERS), owner, items,
                                    ARRAYSIZE(items), nullptr);
    p->page = items[2].minimum;
    return result;
}

std::string DescribeParameters(int result, const MachiningParameters& parameters) {
    const struct {
        int result;
        UINT text;
    } ends[] = {{IDOK, IDS_PARAMETERS_TAKEN}, {IDC_SIMULATE, IDS_SIMULATION}, {IDC_SKIP, IDS_SKIPPED}};
    UINT text = IDS_CANCELLED;
    for (const auto& end : ends) {
        if (end.result == result) text = end.text;
    }
    char format[128], line[256];
    std::snprintf(line, sizeof(line), LoadText(text, format), parameters.part, parameters.speed, parameters.depth,
                  parameters.diameter);
    return line;
}
