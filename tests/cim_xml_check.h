// Validates CIM-XML documents with xmllint against the DMTF DTD, which is
// kept beside the checkout (VRX_CIM_DTD) and never in it.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

inline bool cimDtdPresent() { return std::filesystem::exists(VRX_CIM_DTD); }

// xmllint's complaints about `xml`, or "" when the document is valid.
inline std::string cimXmlErrors(const std::string& xml) {
  static int count = 0;
  const auto base = std::filesystem::temp_directory_path() /
                    ("cim_xml_check_" + std::to_string(::getpid()) + "_" + std::to_string(++count));
  const std::string document = base.string() + ".xml", errors = base.string() + ".err";
  std::ofstream(document, std::ios::binary) << xml;
  const std::string command =
      std::string("xmllint --noout --dtdvalid ") + VRX_CIM_DTD + " " + document + " 2>" + errors;
  const int status = std::system(command.c_str());
  std::ostringstream text;
  text << std::ifstream(errors).rdbuf();
  std::filesystem::remove(document);
  std::filesystem::remove(errors);
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return "";
  return "xmllint failed: " + text.str();
}
