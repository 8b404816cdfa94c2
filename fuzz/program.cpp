// What the program reads.

#include "support.h"

#include "brushfile.h"
#include "failure.h"
#include "inkdocument.h"

namespace ovw::fuzz {

void inkDocument(Input input) {
    const InputFile file(input, "input.inkml");
    try {
        ovwpaint::InkDocument document(file.folder().posix("input.inkml").string());
        document.survey();
    } catch (const ovwpaint::Failure&) {
        return;
    }
}

void brushFile(Input input) {
    try {
        ovwpaint::parseBrush(textOf(input), "input");
    } catch (const ovwpaint::Failure&) {
        return;
    }
}

} // namespace ovw::fuzz
