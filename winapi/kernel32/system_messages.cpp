// The English texts of the common Win32 errors. Texts with inserts (%1) are left out, so that
// every message can be given whether or not the caller ignores inserts.
#include "winapi/kernel32/system_messages.h"

#include <algorithm>
#include <iterator>

namespace winapi {

namespace {

struct Message {
  std::uint32_t number;
  const char* text;
};

// Sorted by number.
const Message kMessages[] = {
    {0, "The operation completed successfully.\r\n"},
    {1, "Incorrect function.\r\n"},
    {2, "The system cannot find the file specified.\r\n"},
    {3, "The system cannot find the path specified.\r\n"},
    {4, "The system cannot open the file.\r\n"},
    {5, "Access is denied.\r\n"},
    {6, "The handle is invalid.\r\n"},
    {8, "Not enough memory resources are available to process this command.\r\n"},
    {13, "The data is invalid.\r\n"},
    {14, "Not enough memory resources are available to complete this operation.\r\n"},
    {15, "The system cannot find the drive specified.\r\n"},
    {18, "There are no more files.\r\n"},
    {21, "The device is not ready.\r\n"},
    {31, "A device attached to the system is not functioning.\r\n"},
    {32, "The process cannot access the file because it is being used by another process.\r\n"},
    {38, "Reached the end of the file.\r\n"},
    {50, "The request is not supported.\r\n"},
    {53, "The network path was not found.\r\n"},
    {67, "The network name cannot be found.\r\n"},
    {80, "The file exists.\r\n"},
    {87, "The parameter is incorrect.\r\n"},
    {111, "The file name is too long.\r\n"},
    {112, "There is not enough space on the disk.\r\n"},
    {120, "This function is not supported on this system.\r\n"},
    {122, "The data area passed to a system call is too small.\r\n"},
    {123, "The filename, directory name, or volume label syntax is incorrect.\r\n"},
    {126, "The specified module could not be found.\r\n"},
    {127, "The specified procedure could not be found.\r\n"},
    {161, "The specified path is invalid.\r\n"},
    {170, "The requested resource is in use.\r\n"},
    {183, "Cannot create a file when that file already exists.\r\n"},
    {203, "The system could not find the environment option that was entered.\r\n"},
    {206, "The filename or extension is too long.\r\n"},
    {234, "More data is available.\r\n"},
    {259, "No more data is available.\r\n"},
    {267, "The directory name is invalid.\r\n"},
    {487, "Attempt to access invalid address.\r\n"},
    {997, "Overlapped I/O operation is in progress.\r\n"},
    {998, "Invalid access to memory location.\r\n"},
    {1004, "Invalid flags.\r\n"},
    {1008, "An attempt was made to reference a token that does not exist.\r\n"},
    {1010, "The configuration registry key is invalid.\r\n"},
    {1011, "The configuration registry key could not be opened.\r\n"},
    {1012, "The configuration registry key could not be read.\r\n"},
    {1060, "The specified service does not exist as an installed service.\r\n"},
    {1113, "No mapping for the Unicode character exists in the target multi-byte code page.\r\n"},
    {1168, "Element not found.\r\n"},
    {1223, "The operation was canceled by the user.\r\n"},
    {1300, "Not all privileges or groups referenced are assigned to the caller.\r\n"},
    {1314, "A required privilege is not held by the client.\r\n"},
    {1317, "The specified account does not exist.\r\n"},
    {1332, "No mapping between account names and security IDs was done.\r\n"},
    {1355, "The specified domain either does not exist or could not be contacted.\r\n"},
    {1359, "An internal error occurred.\r\n"},
    {1460, "This operation returned because the timeout period expired.\r\n"},
    {1722, "The RPC server is unavailable.\r\n"},
    {1812, "The specified image file did not contain a resource section.\r\n"},
    {1813, "The specified resource type cannot be found in the image file.\r\n"},
    {1814, "The specified resource name cannot be found in the image file.\r\n"},
    {1815, "The specified resource language ID cannot be found in the image file.\r\n"},
};

}  // namespace

const char* systemMessage(std::uint32_t number) {
  auto found =
      std::lower_bound(std::begin(kMessages), std::end(kMessages), number,
                       [](const Message& message, std::uint32_t n) { return message.number < n; });
  return found != std::end(kMessages) && found->number == number ? found->text : nullptr;
}

}  // namespace winapi
