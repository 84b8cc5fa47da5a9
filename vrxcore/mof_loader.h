// Loads MOF declarations into a repository namespace.
#pragma once

#include <string>

#include "vrxcore/mof_parser.h"
#include "vrxcore/repository.h"

namespace NZARVEK20 {

// Declares the document's qualifiers and classes in `ns` and commits its
// instances, in document order. A declaration that the repository refuses
// throws mof::ParseError located at that declaration; what came before it
// stays loaded.
void LoadMof(TRepositoryNamespace& ns, const mof::Document& document);
void LoadMofFile(TRepositoryNamespace& ns, const std::string& path);

}  // namespace NZARVEK20
