// xml_conversion_command.h - the selected XML documents in another layout, through the host's XML service.
#pragma once

#include "sdk/host_services.h"

namespace FileUtils {

/// 30200: the host's mode 1, the readable form; 30201: mode 0, the compact form. A document that the host cannot load
/// is left alone and named in the log; one that it cannot save is told about in a message box. Always handled.
uint32_t RunXmlConversion(Quorvane::SDK::IHostServices& host, uint32_t id);

}  // namespace FileUtils
