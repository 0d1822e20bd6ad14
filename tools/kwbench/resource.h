/* Ids of kwbench's resources. */
#pragma once

#define IDD_BENCH 300
#define IDC_BENCH_ITEM 1000 /* the first: 60 fields, 20 check boxes and 20 labels */
