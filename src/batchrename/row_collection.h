// row_collection.h - the host's selection as rows.
#pragma once

#include "batchrename/model/preview.h"
#include "sdk/host_services.h"

namespace BatchRename {

/// One row for each selected item, in list order; items without a name are left out. To be called on the host's thread.
RowSnapshot CollectRows(Quorvane::SDK::IHostServices& services);

}  // namespace BatchRename
