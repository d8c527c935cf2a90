// The system's headers, without the macros that turn names of ours into names of theirs. Every
// source of this folder takes them from here, so that a class has the same members everywhere.
#pragma once

// clang-format off
#include <windows.h>
#include <shellapi.h>
#include <wininet.h>
#include <objbase.h>
// clang-format on

#undef CopyFile
#undef CreateFile
#undef CreateFont
#undef CreateFontIndirect
#undef CreateMetaFile
#undef CreateEnhMetaFile
#undef CreateProcess
#undef DeleteFile
#undef DrawText
#undef EnumFontFamilies
#undef FindText
#undef GetClassName
#undef GetCurrentTime
#undef GetFreeSpace
#undef GetGlyphOutline
#undef GetMessage
#undef GetObject
#undef GetTextExtentPoint32
#undef GetTextMetrics
#undef GetUserName
#undef MoveFile
#undef PlaySound
#undef Polygon
#undef Rectangle
#undef RegisterClass
#undef ReplaceFile
#undef ReplaceText
#undef SendMessage
#undef TextOut
#undef Yield
#undef small
#undef near
#undef far
