#include "fuzz/targets.h"

namespace QVFuzz {
namespace {

constexpr Target kTargets[] = {
    {"encoding", RunEncoding},
    {"document", RunDocument},
    {"matching", RunMatching},
    {"wildcard", RunWildcard},
    {"sort-keys", RunSortKeys},
    {"date-keys", RunDateKeys},
    {"name-template", RunNameTemplate},
    {"search-and-replace", RunSearchAndReplace},
    {"regex", RunRegex},
    {"rename-plan", RunRenamePlan},
    {"undo-session", RunUndoSession},
    {"base64", RunBase64},
    {"mime-header", RunMimeHeader},
    {"text-conversion", RunTextConversion},
    {"stream-records", RunStreamRecords},
    {"junction", RunJunction},
    {"xml-layout", RunXmlLayout},
#ifdef _WIN32
    {"sort-lines", RunSortLines},
    {"profiles", RunProfiles},
    {"elevated-request", RunElevatedRequest},
#endif
};

}  // namespace

std::span<const Target> Targets() {
    return kTargets;
}

}  // namespace QVFuzz
