// SetupAPI's INF functions as <setupapi.h> declares them, as far as the collector uses them
// (setupapi.cpp).

#ifndef VRX_WINAPI_SETUPAPI_H
#define VRX_WINAPI_SETUPAPI_H

#include "winapi/include/windows.h"

typedef PVOID HINF;

#define ERROR_EXPECTED_SECTION_NAME 0xE0000000
#define ERROR_BAD_SECTION_NAME_LINE 0xE0000001
#define ERROR_SECTION_NAME_TOO_LONG 0xE0000002
#define ERROR_WRONG_INF_STYLE 0xE0000100
#define ERROR_SECTION_NOT_FOUND 0xE0000101
#define ERROR_LINE_NOT_FOUND 0xE0000102
#define ERROR_CLASS_MISMATCH 0xE0000201

#define INF_STYLE_NONE 0x00000000
#define INF_STYLE_OLDNT 0x00000001
#define INF_STYLE_WIN4 0x00000002
#define INF_STYLE_CACHE_ENABLE 0x00000010
#define INF_STYLE_CACHE_DISABLE 0x00000020
#define INF_STYLE_CACHE_IGNORE 0x00000040
#define MAX_INF_STRING_LENGTH 4096

typedef struct _INFCONTEXT {
  PVOID Inf;
  PVOID CurrentInf;
  UINT Section;
  UINT Line;
} INFCONTEXT, *PINFCONTEXT;

extern "C" {
HINF WINAPI SetupOpenInfFileA(PCSTR FileName, PCSTR InfClass, DWORD InfStyle, PUINT ErrorLine);
void WINAPI SetupCloseInfFile(HINF InfHandle);
BOOL WINAPI SetupFindFirstLineA(HINF InfHandle, PCSTR Section, PCSTR Key, PINFCONTEXT Context);
LONG WINAPI SetupGetLineCountA(HINF InfHandle, PCSTR Section);
BOOL WINAPI SetupGetLineByIndexA(HINF InfHandle, PCSTR Section, DWORD Index, PINFCONTEXT Context);
BOOL WINAPI SetupGetLineTextA(PINFCONTEXT Context, HINF InfHandle, PCSTR Section, PCSTR Key,
                              PSTR ReturnBuffer, DWORD ReturnBufferSize, PDWORD RequiredSize);
BOOL WINAPI SetupGetStringFieldA(PINFCONTEXT Context, DWORD FieldIndex, PSTR ReturnBuffer,
                                 DWORD ReturnBufferSize, PDWORD RequiredSize);
}  // extern "C"

#endif
