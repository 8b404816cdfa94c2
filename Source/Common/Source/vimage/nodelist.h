#ifndef OVW_VIMAGE_NODELIST_H
#define OVW_VIMAGE_NODELIST_H

#include "ovwcmn/xcswap.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace ovw::vimage {

/// A doubly linked list of blocks whose nodes come from batches, so that paging allocates almost nothing. Both ends of
/// a node's life cost a constant time. Requires the store's locks, but for count().
template <class Item>
class NodeList {
public:
    Item* head() const { return m_pHead; }
    std::uint32_t count() const { return m_nCount.load(std::memory_order_relaxed); }

    /// Throws std::bad_alloc, nothing changed then.
    Item* append(XCSwapBlock* block) {
        Item* const item = takeNode();
        *item = Item{block, nullptr, m_pTail};
        (m_pTail ? m_pTail->next : m_pHead) = item;
        m_pTail = item;
        m_nCount.store(count() + 1, std::memory_order_relaxed);
        return item;
    }

    void remove(Item* item) {
        (item->previous ? item->previous->next : m_pHead) = item->next;
        (item->next ? item->next->previous : m_pTail) = item->previous;
        returnNode(item);
        m_nCount.store(count() - 1, std::memory_order_relaxed);
    }

private:
    static constexpr std::size_t cnBatchNodes = 1024;
    /// A power of two that holds a batch: the address of a node leads to its batch.
    static constexpr std::size_t cnBatchAlignment = 32768;

    struct alignas(cnBatchAlignment) Batch {
        explicit Batch(std::size_t place) : index(place) {
            for (std::size_t i = 0; i < cnBatchNodes; ++i)
                freeNodes[i] = static_cast<std::uint16_t>(cnBatchNodes - 1 - i);
        }

        std::array<Item, cnBatchNodes> items;
        std::array<std::uint16_t, cnBatchNodes> freeNodes; // a stack
        std::size_t freeCount = cnBatchNodes;
        std::size_t index; // of the batch in m_arrBatch
    };
    static_assert(sizeof(Batch) == cnBatchAlignment);

    Item* takeNode() {
        while (m_nFirstFree < m_arrBatch.size() && m_arrBatch[m_nFirstFree]->freeCount == 0)
            ++m_nFirstFree;
        if (m_nFirstFree == m_arrBatch.size())
            m_arrBatch.push_back(std::make_unique<Batch>(m_nFirstFree));
        Batch& batch = *m_arrBatch[m_nFirstFree];
        return &batch.items[batch.freeNodes[--batch.freeCount]];
    }

    void returnNode(Item* item) {
        const auto address = reinterpret_cast<std::uintptr_t>(item) & ~(cnBatchAlignment - 1);
        Batch& batch = *reinterpret_cast<Batch*>(address);
        batch.freeNodes[batch.freeCount++] = static_cast<std::uint16_t>(item - batch.items.data());
        m_nFirstFree = std::min(m_nFirstFree, batch.index);
    }

    Item* m_pHead = nullptr;
    Item* m_pTail = nullptr;
    std::atomic<std::uint32_t> m_nCount{0};
    std::vector<std::unique_ptr<Batch>> m_arrBatch;
    std::size_t m_nFirstFree = 0; // no batch before it has a free node
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_NODELIST_H
