#ifndef OVW_FUZZ_TARGETS_H
#define OVW_FUZZ_TARGETS_H

/// @file
/// The readers of everything that comes from outside, each as a function of some bytes. A target may refuse its input
/// with an XCException (or the program's Failure); anything else that ends it is a finding. Bytes under seeds/TARGET
/// are where a run begins; those under findings/TARGET once broke something and are replayed by the tests.

#include <cstdint>
#include <span>

namespace ovw::fuzz {

using Input = std::span<const std::uint8_t>;

void archive(Input input);
void imageStream(Input input);
void packedImage(Input input);
void classicImage(Input input);
void packedFile(Input input);
void zipFile(Input input);
void preferenceFile(Input input);
void settingsKey(Input input);
void pointFile(Input input);
void cipherFile(Input input);
void documentHead(Input input);
void stringTable(Input input);
void pathText(Input input);
void numberText(Input input);
void inkDocument(Input input);
void brushFile(Input input);

} // namespace ovw::fuzz

#endif // OVW_FUZZ_TARGETS_H
