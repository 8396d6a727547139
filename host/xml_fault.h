// xml_fault.h - where and why a file is no well-formed XML.
#pragma once

#include <string>

#include "win32/windows.h"

#include <msxml2.h>

namespace QVHost {

/// "line L, column C" and the reader's reason, if it has one, of the document that could not be loaded from `path`.
/// "" when that is not what is wrong.
std::wstring FaultOf(IXMLDOMDocument2& document, const std::wstring& path);

}  // namespace QVHost
