#include "ovwcmn/xchandle.h"

#include "support/scopes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using ovw::test::errorOf;

constexpr int cnParameter = 0x20010008;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool cnSanitized = true;
#else
constexpr bool cnSanitized = false;
#endif

VXHANDLE newBlock(const char* text) {
    const VXHANDLE block = vxAlloc(std::uint32_t(std::strlen(text)), 1, nullptr);
    std::memcpy(static_cast<void*>(block), text, std::strlen(text));
    return block;
}

template <class Owner>
std::string bytes(const Owner& owner) {
    const unsigned char* const begin = owner;
    return std::string(begin, begin + owner.GetMemSize());
}

template <class Owner>
void fill(Owner& owner, const char* text) {
    owner.Alloc(std::uint32_t(std::strlen(text)), 1, 1);
    owner.Copy(static_cast<const void*>(text), std::uint32_t(std::strlen(text)), 0, 0);
}

/// Leaves the process about 1 GiB of addresses beyond what it has.
class AddressLimit {
public:
    AddressLimit() {
        getrlimit(RLIMIT_AS, &m_before);
        std::uint64_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        rlimit limit = m_before;
        limit.rlim_cur = pages * std::uint64_t(sysconf(_SC_PAGESIZE)) + (1u << 30);
        setrlimit(RLIMIT_AS, &limit);
    }
    ~AddressLimit() { setrlimit(RLIMIT_AS, &m_before); }

private:
    rlimit m_before{};
};

template <class Owner>
class MemoryOwner : public testing::Test {};

using Owners = testing::Types<XCHandle, XCPointer>;
TYPED_TEST_SUITE(MemoryOwner, Owners);

TYPED_TEST(MemoryOwner, NewAndAddedBytesAreZero) {
    TypeParam owner;
    owner.ReAlloc(3);
    EXPECT_EQ(owner.GetPurgeFlag(), 1);
    EXPECT_EQ(bytes(owner), std::string(3, '\0'));
    fill(owner, "abcdef");
    owner.ReAlloc(2);
    owner.ReAlloc(5);
    EXPECT_EQ(bytes(owner), std::string("ab\0\0\0", 5));
}

TYPED_TEST(MemoryOwner, CopiesAreIndependent) {
    TypeParam first;
    fill(first, "abc");
    TypeParam second(first);
    static_cast<unsigned char*>(first)[0] = 'X';
    EXPECT_EQ(bytes(second), "abc");
    first = *&first;
    EXPECT_EQ(bytes(first), "Xbc");
    first = TypeParam();
    EXPECT_EQ(first.IsValid(), 0);
    EXPECT_EQ(first.GetMemSize(), 0u);
    second = first;
    EXPECT_EQ(second.IsValid(), 0);
}

TYPED_TEST(MemoryOwner, CopiesFromEveryKindOfBlock) {
    XCHandle handle;
    fill(handle, "handle");
    XCPointer pointer;
    fill(pointer, "pointer");
    TypeParam owner;
    fill(owner, "----------");
    owner.Copy(handle, 0, 1, 0);
    EXPECT_EQ(bytes(owner), "-handle---");
    owner.Copy(pointer, 3, 0, 4);
    EXPECT_EQ(bytes(owner), "terndle---");
    owner.Copy(handle.GetHandle(), 2, 8, 1);
    EXPECT_EQ(bytes(owner), "terndle-an");
    owner.BlockMove(6, 2, 0);
    EXPECT_EQ(bytes(owner), "teterndlan");
    owner.BlockMove(6, 0, 2);
    EXPECT_EQ(bytes(owner), "terndldlan");
    EXPECT_EQ(vxGetLockCount(handle.GetHandle()), 0);
    EXPECT_EQ(errorOf([&] { owner.Copy(static_cast<VXHANDLE>(nullptr), 1, 0, 0); }), cnParameter);
}

TYPED_TEST(MemoryOwner, NothingIsCopiedBeyondABlock) {
    XCHandle source;
    fill(source, "abcd");
    TypeParam owner;
    fill(owner, "123456");
    const struct {
        std::uint32_t size;
        int to, from;
    } cases[] = {{5, 0, 0}, {4, 3, 0}, {2, 0, 3}, {1, -1, 0}, {1, 0, -1}, {0xFFFFFFFF, 1, 1}};
    for (const auto& c : cases) {
        EXPECT_EQ(errorOf([&] { owner.Copy(source, c.size, c.to, c.from); }), cnParameter) << c.size << ',' << c.to;
    }
    EXPECT_EQ(errorOf([&] { owner.BlockMove(4, 3, 0); }), cnParameter);
    EXPECT_EQ(errorOf([&] { owner.BlockMove(4, 0, 3); }), cnParameter);
    EXPECT_EQ(bytes(owner), "123456");
}

TYPED_TEST(MemoryOwner, FailureThrowsNoMemoryAndKeepsTheBlock) {
    if (cnSanitized)
        GTEST_SKIP() << "sanitizers need all addresses";
    TypeParam owner;
    fill(owner, "abc");
    const AddressLimit limit;
    EXPECT_EQ(errorOf([&] { owner.ReAlloc(0xFFFFFF00); }), 8);
    EXPECT_EQ(bytes(owner), "abc");
    TypeParam other;
    EXPECT_EQ(errorOf([&] { other.Alloc(0xFFFFFF00); }), 8);
    EXPECT_EQ(other.IsValid(), 0);
    EXPECT_EQ(other.GetMemSize(), 0u);
    EXPECT_EQ(vxGetLastError(), 8);
}

TEST(XCHandle, LocksNest) {
    XCHandle handle;
    EXPECT_EQ(errorOf([&] { handle.Lock(); }), cnParameter);
    EXPECT_EQ(errorOf([&] { handle.Unlock(); }), cnParameter);
    handle.Alloc(10);
    EXPECT_EQ(handle.Lock(), static_cast<void*>(handle));
    handle.Lock();
    handle.Unlock();
    EXPECT_EQ(handle.GetLockCount(), 1);
    EXPECT_GT(vxGetLockCount(handle.GetHandle()), 0);
    handle.Unlock();
    EXPECT_EQ(handle.GetLockCount(), 0);
    handle.Lock();
    handle.ReAlloc(20);
    EXPECT_EQ(handle.GetLockCount(), 0);
}

TEST(XCHandle, DetachUnlocksOnceAndGivesTheBlockAway) {
    const VXHANDLE block = newBlock("abc");
    vxLock(block);
    vxLock(block);
    {
        XCHandle handle(block, 3);
        EXPECT_EQ(handle.GetLockCount(), 0);
        EXPECT_EQ(handle.Detach(), block);
        EXPECT_EQ(handle.IsValid(), 0);
        EXPECT_EQ(handle.Detach(), nullptr);
    }
    EXPECT_EQ(vxGetLockCount(block), 1);
    EXPECT_EQ(std::memcmp(static_cast<void*>(block), "abc", 3), 0);
    vxFree(block);
}

TEST(XCHandle, BorrowedBlocksAreOnlyUnlocked) {
    const VXHANDLE block = newBlock("abc");
    vxLock(block);
    vxLock(block);
    {
        XCHandle handle;
        handle.Alloc(5);
        handle.Attach(block, 3, 0);
        EXPECT_EQ(bytes(handle), "abc");
    }
    EXPECT_EQ(vxGetLockCount(block), 1);
    XCHandle owner(block, 3);
    owner.SetPurgeFlag(0);
    owner.Free();
    EXPECT_EQ(owner.GetPurgeFlag(), 1);
    EXPECT_EQ(vxGetLockCount(block), 0);
    vxFree(block);
}

TEST(XCPointer, AHandleWithoutABlockIsNoSource) {
    XCPointer pointer;
    pointer.Alloc(4);
    EXPECT_EQ(errorOf([&] { pointer.Copy(XCHandle(), 0, 0, 0); }), cnParameter);
}

TEST(XCPointer, AttachAsksForTheSize) {
    void* const block = vxAllocPtr(77, 1, nullptr);
    {
        XCPointer pointer;
        pointer.Attach(block, 0, 0);
        EXPECT_EQ(pointer.GetMemSize(), 77u);
        pointer.Attach(nullptr, 0, 1);
        EXPECT_EQ(pointer.GetMemSize(), 0u);
        pointer.Attach(block, 5, 1);
        EXPECT_EQ(pointer.GetMemSize(), 5u);
        EXPECT_EQ(pointer.Detach(), block);
        EXPECT_EQ(pointer.IsValid(), 0);
    }
    vxFreePtr(block);
}

TEST(XCTAutoLockHandle, LocksWhileItLives) {
    XCHandle handle;
    fill(handle, "abc");
    XCHandle other;
    fill(other, "xyz");
    {
        XCTAutoLockHandle<unsigned char> guard(handle);
        EXPECT_EQ(handle.GetLockCount(), 1);
        EXPECT_EQ(guard[std::ptrdiff_t{2}], 'c');
        guard.Lock(&other);
        EXPECT_EQ(handle.GetLockCount(), 0);
        EXPECT_EQ(other.GetLockCount(), 1);
        guard.Unlock();
        guard.Unlock();
        EXPECT_EQ(other.GetLockCount(), 0);
        EXPECT_EQ(guard.IsValid(), 1);
        EXPECT_EQ(guard.Lock()[0], 'x');
    }
    EXPECT_EQ(other.GetLockCount(), 0);
    XCHandle empty;
    EXPECT_EQ(errorOf([&] { XCTAutoLockHandle<unsigned char> guard(empty); }), cnParameter);
    XCTAutoLockHandle<unsigned char> idle;
    EXPECT_EQ(idle.IsValid(), 0);
    EXPECT_EQ(idle.Lock(nullptr), nullptr);
}

// The address sanitizer watches that every block is freed once.
TEST(XCAutoHandle, FreesWhatItHolds) {
    XCAutoHandle guard;
    EXPECT_EQ(static_cast<void*>(guard), nullptr);
    const VXHANDLE block = newBlock("abc");
    EXPECT_EQ(guard = block, static_cast<void*>(block));
    EXPECT_EQ(vxGetLockCount(block), 1);
    guard = newBlock("def");
    EXPECT_EQ(static_cast<unsigned char*>(guard)[0], 'd');
    EXPECT_EQ(guard = nullptr, nullptr);
    int second = 0;
    XCAutoPointer pointer(vxAllocPtr(3, 1, nullptr), &second);
    pointer = vxAllocPtr(4, 1, nullptr);
    EXPECT_NE(static_cast<void*>(pointer), nullptr);
    EXPECT_EQ(pointer.GetSecond(), &second);
}

} // namespace
