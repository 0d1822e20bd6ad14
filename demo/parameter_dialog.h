// Machining parameters in a dialog of two pages, which kwDlgBoxCtrl runs from tables.
#pragma once

#include <windows.h>

#include <string>

struct MachiningParameters {
    char part[24] = "MP-2040-01";
    short speed = 120;    // m/min
    double feed = 0.15;   // mm/rev
    double depth = 2.5;   // mm
    double angle = 29.5;  // degrees
    int finish = 1;       // roughing, semi-finishing, finishing
    signed char coolant = 1;
    int toolKind = 0;
    double diameter = 12;  // mm
    signed char teeth = 4;
    float length = 80;  // mm
    int carbide = 1;
    double page = 0;  // the one that was shown last
};

// Lets the user edit the parameters. Returns what kwDlgBoxCtrl returns.
int EditParameters(HWND owner, MachiningParameters* parameters);

// One line of text about an accepted or dismissed dialog.
std::string DescribeParameters(int result, const MachiningParameters& parameters);
