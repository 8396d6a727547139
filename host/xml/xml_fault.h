// xml_fault.h - where and why a file is no well-formed XML.
#pragma once

#include <string>
#include <string_view>

#include "win32/windows.h"

#include <msxml2.h>

namespace QVHost {

/// "line L, column C" and the reader's reason, if it has one, of the document that could not be loaded from `bytes`.
/// "" when that is not what is wrong.
std::wstring FaultOf(IXMLDOMDocument2& document, std::string_view bytes);

}  // namespace QVHost
