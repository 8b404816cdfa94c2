// The row kernels as one instruction set compiles them. The file that includes this one defines OVW_KERNEL_TABLE, the
// function that hands out the table, and is compiled with the flags of its instruction set. Nothing of these texts may
// reach other sources: the linker would pick one of several copies.

#include "vimage/longrows.inl"
#include "vimage/resamplerows.inl"
#include "vimage/tonerows.inl"
#include "vimage/turnrows.inl"

namespace ovw::vimage {
namespace {

constexpr RowKernels cnKernels = {
    {averageColours<2>, averageColours<4>, averageColours<8>},
    {averageSquares<2, cnAlphaFirst>, averageSquares<4, cnAlphaFirst>, averageSquares<8, cnAlphaFirst>},
    {averageTriples<2>, averageTriples<4>, averageTriples<8>},
    {addBytes<2>, addBytes<4>, addBytes<8>},
    addRows,
    addRuns,
    weighedColours,
    {repeat<2>, repeat<4>},
    {transpose<std::uint8_t, false>, transpose<std::uint16_t, false>, transpose<std::uint32_t, false>},
    {transposeStreamed<std::uint8_t>, transposeStreamed<std::uint16_t>, transposeStreamed<std::uint32_t>},
    {reverse<std::uint8_t>, reverse<std::uint16_t>, reverse<std::uint32_t>},
    luminances<Rgb24>,
    luminances<Rgba32>,
    alphas32,
    tones,
    packInk,
    fillRepeated,
    shiftBits,
    stream,
    endStream,
};

} // namespace

const RowKernels& OVW_KERNEL_TABLE() { return cnKernels; }

} // namespace ovw::vimage
