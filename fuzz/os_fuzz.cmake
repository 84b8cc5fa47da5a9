# The readers of boot configuration records (boot.ini lines, store elements).
# Include from fuzz/CMakeLists.txt, after vrx_fuzz_target is defined.
vrx_fuzz_target(fuzz_boot_records installedapps_core)
