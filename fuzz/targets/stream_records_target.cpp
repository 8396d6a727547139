// Records of a file's streams, as a driver hands them out.
#include "security/stream_records.h"

#include "fuzz/input.h"

namespace QVFuzz {

void RunStreamRecords(Bytes bytes) {
    const Exact<char> block(Input(bytes).Rest());
    const auto figures =
        Security::FiguresOfStreams({reinterpret_cast<const uint8_t*>(block.View().data()), block.View().size()});
    Require(figures.count * 24 <= block.View().size(), "no more streams than records fit");
}

}  // namespace QVFuzz
