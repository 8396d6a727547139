// The bytes of a junction, read back field by field.
#include "fileutils/links/reparse.h"

#include "fuzz/input.h"

namespace QVFuzz {

void RunJunction(Bytes bytes) {
    Input input(bytes);
    const size_t copies = size_t{1} + input.Byte() * size_t{input.Byte()};
    const std::wstring piece = Widened<wchar_t>(input.Rest());
    std::wstring name;
    for (size_t at = 0; at < copies && name.size() < 20000; ++at) name += piece;
    const auto block = FileUtils::JunctionReparseBuffer(name);
    const bool fits = 16 + (name.size() + 2) * 2 <= FileUtils::kReparseBufferSize;
    Require(block.has_value() == fits, "a name is taken when it fits, and else refused");
    if (!block) return;
    const auto at = [&](size_t offset) { return block->bytes.at(offset) | size_t{block->bytes.at(offset + 1)} << 8; };
    Require(at(4) + 8 == block->usedSize && at(10) == name.size() * 2 && at(12) == name.size() * 2 + 2,
            "lengths agree");
    for (size_t unit = 0; unit < name.size(); ++unit)
        Require(at(16 + unit * 2) == (static_cast<size_t>(name[unit]) & 0xFFFF), "the name stands there");
}

}  // namespace QVFuzz
