// The Net API as <lm.h> declares it, as far as the collector uses it: the local accounts
// (NetUserEnum level 3), the users logged on (NetWkstaUserEnum level 1) and freeing their
// buffers.

#ifndef VRX_WINAPI_LM_H
#define VRX_WINAPI_LM_H

#include "winapi/include/windows.h"

#define NET_API_FUNCTION

typedef DWORD NET_API_STATUS;
typedef WCHAR* LMSTR;
typedef BYTE* PBYTE;

#define NERR_Success 0
#define NERR_WkstaNotStarted 2138
#define MAX_PREFERRED_LENGTH ((DWORD)-1)

#define FILTER_NORMAL_ACCOUNT 0x0002

#define UF_ACCOUNTDISABLE 0x0002
#define UF_PASSWD_NOTREQD 0x0020
#define UF_PASSWD_CANT_CHANGE 0x0040
#define UF_PASSWORD_EXPIRED 0x800000

typedef struct _USER_INFO_3 {
  LPWSTR usri3_name;
  LPWSTR usri3_password;
  DWORD usri3_password_age;
  DWORD usri3_priv;
  LPWSTR usri3_home_dir;
  LPWSTR usri3_comment;
  DWORD usri3_flags;
  LPWSTR usri3_script_path;
  DWORD usri3_auth_flags;
  LPWSTR usri3_full_name;
  LPWSTR usri3_usr_comment;
  LPWSTR usri3_parms;
  LPWSTR usri3_workstations;
  DWORD usri3_last_logon;
  DWORD usri3_last_logoff;
  DWORD usri3_acct_expires;
  DWORD usri3_max_storage;
  DWORD usri3_units_per_week;
  PBYTE usri3_logon_hours;
  DWORD usri3_bad_pw_count;
  DWORD usri3_num_logons;
  LPWSTR usri3_logon_server;
  DWORD usri3_country_code;
  DWORD usri3_code_page;
  DWORD usri3_user_id;
  DWORD usri3_primary_group_id;
  LPWSTR usri3_profile;
  LPWSTR usri3_home_dir_drive;
  DWORD usri3_password_expired;
} USER_INFO_3, *PUSER_INFO_3, *LPUSER_INFO_3;

typedef struct _WKSTA_USER_INFO_1 {
  LMSTR wkui1_username;
  LMSTR wkui1_logon_domain;
  LMSTR wkui1_oth_domains;
  LMSTR wkui1_logon_server;
} WKSTA_USER_INFO_1, *PWKSTA_USER_INFO_1, *LPWKSTA_USER_INFO_1;

extern "C" {

NET_API_STATUS NET_API_FUNCTION NetUserEnum(LPCWSTR servername, DWORD level, DWORD filter,
                                            LPBYTE* bufptr, DWORD prefmaxlen, LPDWORD entriesread,
                                            LPDWORD totalentries, PDWORD resume_handle);
NET_API_STATUS NET_API_FUNCTION NetWkstaUserEnum(LMSTR servername, DWORD level, LPBYTE* bufptr,
                                                 DWORD prefmaxlen, LPDWORD entriesread,
                                                 LPDWORD totalentries, LPDWORD resumehandle);
NET_API_STATUS NET_API_FUNCTION NetApiBufferFree(LPVOID Buffer);

}  // extern "C"

#endif
