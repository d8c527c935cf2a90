// Numbers of the resources. Controls have the numbers of ControlId.
#pragma once

#define KERNO_ICON 101
#define KERNO_MAIN_DIALOG 102
#define KERNO_ABOUT_DIALOG 103
#define KERNO_PROGRESS_DIALOG 104
#define KERNO_NAME_DIALOG 105
#define KERNO_PROGRESS_TEXT 1101
#define KERNO_PROGRESS_BAR 1102
#define KERNO_ABOUT_ICON 1103
#define KERNO_NAME_EDIT 1104
