#ifndef OVW_VIMAGE_VECTORS_INL
#define OVW_VIMAGE_VECTORS_INL

// Vectors as wide as the instruction set that the including file is compiled for; but for transposing and shuffling,
// where 512 bits gain nothing, at most 256. Shuffles stay inside lanes of 16 bytes, where they are one instruction.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace ovw::vimage {
namespace {

constexpr std::size_t cnLaneBytes = 16;
#if defined(__AVX2__)
constexpr std::size_t cnVectorBytes = 32;
#else
constexpr std::size_t cnVectorBytes = 16;
#endif

template <class T>
struct VectorTypes {
    typedef T Lane __attribute__((vector_size(cnLaneBytes)));
    typedef T Vector __attribute__((vector_size(cnVectorBytes)));
    static constexpr std::size_t cnInLane = cnLaneBytes / sizeof(T);
    static constexpr std::size_t cnCount = cnVectorBytes / sizeof(T);
};
template <class T>
using Vector = typename VectorTypes<T>::Vector;
using Words = Vector<std::uint32_t>;
constexpr std::size_t cnWords = VectorTypes<std::uint32_t>::cnCount;

template <class V>
V loadVector(const void* address) {
    V vector;
    std::memcpy(&vector, address, sizeof vector);
    return vector;
}

template <class V>
void storeVector(void* address, const V& vector) {
    std::memcpy(address, &vector, sizeof vector);
}

/// Past the caches; the address is a multiple of the vector's size.
template <class V>
void streamVector(void* address, const V& vector) {
#if defined(__AVX2__)
    _mm256_stream_si256(static_cast<__m256i*>(address), reinterpret_cast<const __m256i&>(vector));
#elif defined(__x86_64__)
    _mm_stream_si128(static_cast<__m128i*>(address), reinterpret_cast<const __m128i&>(vector));
#else
    storeVector(address, vector);
#endif
}

void endStream() {
#if defined(__x86_64__)
    _mm_sfence();
#endif
}

#if defined(__AVX512F__)
constexpr std::size_t cnDoubles = 8;
#elif defined(__AVX2__)
constexpr std::size_t cnDoubles = 4;
#else
constexpr std::size_t cnDoubles = 2;
#endif
typedef double Doubles __attribute__((vector_size(cnDoubles * sizeof(double))));

// As many numbers as a vector has doubles, from memory.
#if defined(__AVX512F__)
Doubles doublesOf(const std::int32_t* numbers) {
    return reinterpret_cast<Doubles>(_mm512_maskz_cvtepi32_pd(0xFF, loadVector<__m256i>(numbers)));
}
Doubles doublesOf(const std::uint8_t* numbers) {
    const __m256i words = _mm256_cvtepu8_epi32(_mm_loadu_si64(numbers));
    return reinterpret_cast<Doubles>(_mm512_maskz_cvtepi32_pd(0xFF, words));
}
#elif defined(__AVX2__)
Doubles doublesOf(const std::int32_t* numbers) {
    return reinterpret_cast<Doubles>(_mm256_cvtepi32_pd(loadVector<__m128i>(numbers)));
}
Doubles doublesOf(const std::uint8_t* numbers) {
    return reinterpret_cast<Doubles>(_mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_loadu_si32(numbers))));
}
#elif defined(__x86_64__)
Doubles doublesOf(const std::int32_t* numbers) {
    return reinterpret_cast<Doubles>(_mm_cvtepi32_pd(_mm_loadu_si64(numbers)));
}
Doubles doublesOf(const std::uint8_t* numbers) {
    const __m128i zeros = _mm_setzero_si128();
    const __m128i words = _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_loadu_si16(numbers), zeros), zeros);
    return reinterpret_cast<Doubles>(_mm_cvtepi32_pd(words));
}
#else
template <class T>
Doubles doublesOf(const T* numbers) {
    return Doubles{static_cast<double>(numbers[0]), static_cast<double>(numbers[1])};
}
#endif

bool isZero(const Words& words) {
#if defined(__AVX2__)
    const auto& bits = reinterpret_cast<const __m256i&>(words);
    return _mm256_testz_si256(bits, bits);
#elif defined(__x86_64__)
    const __m128i isZeroByte = _mm_cmpeq_epi8(reinterpret_cast<const __m128i&>(words), _mm_setzero_si128());
    return _mm_movemask_epi8(isZeroByte) == 0xFFFF;
#else
    const auto& halves = reinterpret_cast<const Vector<std::uint64_t>&>(words);
    return (halves[0] | halves[1]) == 0;
#endif
}

/// The high halves of the products of 16-bit numbers, two a word.
Words multiplyHigh(const Words& a, const Words& b) {
#if defined(__AVX2__)
    return reinterpret_cast<Words>(
        _mm256_mulhi_epu16(reinterpret_cast<const __m256i&>(a), reinterpret_cast<const __m256i&>(b)));
#elif defined(__x86_64__)
    return reinterpret_cast<Words>(
        _mm_mulhi_epu16(reinterpret_cast<const __m128i&>(a), reinterpret_cast<const __m128i&>(b)));
#else
    return ((a & 0xFFFF) * (b & 0xFFFF)) >> 16 | ((a >> 16) * (b >> 16) & 0xFFFF0000);
#endif
}

/// Elements of two vectors, lane by lane: place(i) says which for place i of a lane; those of b count from the number
/// of a lane's elements on.
template <class T, class Place, std::size_t... I>
Vector<T> shuffleLanes(const Vector<T>& a, const Vector<T>& b, Place place, std::index_sequence<I...>) {
    using Types = VectorTypes<T>;
    constexpr auto index = [](std::size_t i) {
        const std::size_t inLane = Place()(i % Types::cnInLane), lane = i - i % Types::cnInLane;
        return static_cast<int>(inLane < Types::cnInLane ? lane + inLane
                                                         : Types::cnCount + lane + inLane - Types::cnInLane);
    };
    static_cast<void>(place);
    if constexpr (sizeof(T) == sizeof(float)) { // for which there are shuffles of two vectors
        using Floats = Vector<float>;
        return reinterpret_cast<Vector<T>>(__builtin_shufflevector(reinterpret_cast<const Floats&>(a),
                                                                   reinterpret_cast<const Floats&>(b), index(I)...));
    } else {
        return __builtin_shufflevector(a, b, index(I)...);
    }
}
template <class T, class Place>
Vector<T> shuffleLanes(const Vector<T>& a, const Vector<T>& b, Place place) {
    return shuffleLanes<T>(a, b, place, std::make_index_sequence<VectorTypes<T>::cnCount>());
}

/// The elements of a and b by turns, from the first or from the second half of each lane.
template <class T>
Vector<T> interleaveLow(const Vector<T>& a, const Vector<T>& b) {
    return shuffleLanes<T>(a, b, [](std::size_t i) { return i / 2 + (i & 1) * VectorTypes<T>::cnInLane; });
}
template <class T>
Vector<T> interleaveHigh(const Vector<T>& a, const Vector<T>& b) {
    constexpr std::size_t cnInLane = VectorTypes<T>::cnInLane;
    return shuffleLanes<T>(a, b, [](std::size_t i) { return cnInLane / 2 + i / 2 + (i & 1) * cnInLane; });
}

/// A vector whose lanes come from addresses apart: laneAt(0) is the first's.
template <class T, class LaneAt, std::size_t... I>
Vector<T> gatherLanes(LaneAt laneAt, std::index_sequence<I...>) {
    using Lane = typename VectorTypes<T>::Lane;
    if constexpr (cnVectorBytes == cnLaneBytes)
        return loadVector<Lane>(laneAt(0));
    else
        return __builtin_shufflevector(loadVector<Lane>(laneAt(0)), loadVector<Lane>(laneAt(1)), int(I)...);
}
template <class T, class LaneAt>
Vector<T> gatherLanes(LaneAt laneAt) {
    return gatherLanes<T>(laneAt, std::make_index_sequence<VectorTypes<T>::cnCount>());
}

} // namespace
} // namespace ovw::vimage

#endif // OVW_VIMAGE_VECTORS_INL
