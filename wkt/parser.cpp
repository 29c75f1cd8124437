#include "wkt/parser.h"

#include "wkt/generated/grammar.h"

namespace vexa {

std::uint32_t Parser::parse(const ScanBuffer* buffer, Block& result) {
    clearError();
    if (!buffer) return kNoText;

    ParseRun run{*buffer, errorText_};
    const int status = vexaGrammar_parse(run);
    if (run.outOfMemory) return kFailure;
    if (status == VEXA_SUCCESS) result = run.geometry.take();
    return static_cast<std::uint32_t>(status);
}

}  // namespace vexa
