/* The smallest DLL: an entry point and nothing else, so that a fixture holds only the
   resources linked into it. */
int __stdcall DllMainCRTStartup(void* module, unsigned long reason, void* reserved) {
  (void)module;
  (void)reason;
  (void)reserved;
  return 1;
}
