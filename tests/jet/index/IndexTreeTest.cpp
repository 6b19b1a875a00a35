// Index trees compared with a sorted set in memory; the checker visits the whole tree after each batch.
#include "jet/base/Error.h"
#include "jet/index/ExternalSort.h"
#include "jet/index/IndexBuilder.h"
#include "jet/index/IndexIntegrity.h"
#include "jet/index/IndexPath.h"
#include "jet/page/DataPage.h"
#include "jet/pager/MemoryPager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <set>

using namespace jet;

namespace {

constexpr PageNumber TablePage = 77;

using Entry = std::pair<Bytes, RowPointer>;

struct Below {
    bool operator()(const Entry& a, const Entry& b) const {
        const int order =
            std::memcmp(a.first.data(), b.first.data(), std::min(a.first.size(), b.first.size()));
        if (order != 0 || a.first.size() != b.first.size())
            return order != 0 ? order < 0 : a.first.size() < b.first.size();
        return a.second < b.second;
    }
};

using Model = std::set<Entry, Below>;

// A tree on pages in memory: page 1 holds its map, page 2 is its root.
struct Tree {
    MemoryPager pager{3};
    IndexTree tree;

    Tree()
        : tree(makeTree(pager)) {
        tree.create();
    }
    static IndexTree makeTree(Pager& pager) {
        datapage::Format(pager.edit(1), 0);
        datapage::Add(pager.edit(1), Bytes(UsageMapRowLength, 0));
        return {pager, 2, TablePage, UsageMap(pager, {1, 0})};
    }
    void clear() {
        UsageMap pages = tree.pages();
        for (const PageNumber page : pages.pages())
            if (page != tree.root()) {
                pages.remove(page);
                pager.release(page);
            }
        tree.create();
    }
    IndexTree* operator->() { return &tree; }
};

std::vector<std::string> faultsOf(const IndexTree& tree, Model* entries = nullptr) {
    std::vector<std::string> faults;
    CheckIndex(
        tree,
        [&](const IndexFault& fault) {
            faults.push_back("page " + std::to_string(fault.page) + " " + fault.reason);
        },
        [&](KeyView key, RowPointer row) {
            if (entries != nullptr)
                entries->emplace(Bytes(key.begin(), key.end()), row);
        });
    return faults;
}

void expectSame(const IndexTree& tree, const Model& model) {
    Model found;
    const auto faults = faultsOf(tree, &found);
    ASSERT_TRUE(faults.empty()) << faults.front();
    ASSERT_EQ(found, model);
    IndexCursor cursor(tree);
    bool more = cursor.first();
    for (const auto& [key, row] : model) {
        ASSERT_TRUE(more);
        ASSERT_TRUE(std::equal(key.begin(), key.end(), cursor.key().begin(), cursor.key().end()));
        ASSERT_EQ(row, cursor.row());
        more = cursor.next();
    }
    ASSERT_FALSE(more);
    more = cursor.last();
    for (auto one = model.rbegin(); one != model.rend(); ++one) {
        ASSERT_TRUE(more);
        ASSERT_EQ(one->second, cursor.row());
        more = cursor.previous();
    }
    ASSERT_FALSE(more);
}

// The shape of the keys in a random test.
struct Shape {
    const char* name;
    int shortest;
    int longest;
    int letters; // different bytes a key is made of
    int shared;  // bytes with which most keys begin
    int entries;
};

void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.name;
}

class RandomTree : public testing::TestWithParam<Shape> {
protected:
    // No key is a prefix of another, as with real ones.
    Bytes key() {
        const Shape& shape = GetParam();
        Bytes bytes(random_() % 8 == 0 ? 0 : static_cast<std::size_t>(shape.shared), 0x55);
        const auto length = static_cast<std::size_t>(shape.shortest) +
                            random_() % static_cast<std::size_t>(shape.longest - shape.shortest + 1);
        while (bytes.size() < length)
            bytes.push_back(static_cast<std::uint8_t>(1 + random_() % static_cast<unsigned>(shape.letters)));
        bytes.push_back(0);
        return bytes;
    }
    RowPointer row() {
        return {static_cast<PageNumber>(1 + random_() % 3000), static_cast<std::uint8_t>(random_() % 200)};
    }
    auto anyOf(const Model& model) {
        auto place = model.lower_bound({key(), {}});
        return place == model.end() ? model.begin() : place;
    }
    void insertSome(int count) {
        for (int i = 0; i < count; ++i) {
            const auto [at, added] = model_.emplace(key(), row());
            IndexPath place;
            if (added && random_() % 2 == 0 && !tree_->find(at->first, place))
                tree_->insertAt(place, at->first, at->second);
            else if (added)
                tree_->insert(at->first, at->second);
        }
    }
    void removeSome(int count) {
        for (int i = 0; i < count && !model_.empty(); ++i) {
            const auto at = anyOf(model_);
            ASSERT_TRUE(tree_->remove(at->first, at->second));
            model_.erase(at);
        }
    }
    void seekSome(int count) {
        IndexCursor cursor(tree_.tree);
        for (int i = 0; i < count; ++i) {
            const Bytes wanted = key();
            const auto low = model_.lower_bound({wanted, {}});
            const auto high = model_.lower_bound({wanted, {0xFFFFFF, 255}});
            ASSERT_EQ(tree_->contains(wanted), low != high);
            ASSERT_EQ(cursor.seekFrom(wanted), low != model_.end());
            if (low != model_.end()) {
                ASSERT_EQ(cursor.row(), low->second);
                ASSERT_EQ(cursor.matches(wanted), low != high);
            }
            ASSERT_EQ(cursor.seekPast(wanted), high != model_.end());
            if (high != model_.end()) {
                ASSERT_EQ(cursor.row(), high->second);
            }
            ASSERT_EQ(cursor.seekBefore(wanted), low != model_.begin());
            if (low != model_.begin()) {
                ASSERT_EQ(cursor.row(), std::prev(low)->second);
            }
            ASSERT_EQ(cursor.seekUpTo(wanted), high != model_.begin());
            if (high != model_.begin()) {
                ASSERT_EQ(cursor.row(), std::prev(high)->second);
            }
        }
    }
    // A cursor walks while entries around it, including its own, are added and removed.
    void walkWhileChanging(int steps) {
        IndexCursor cursor(tree_.tree);
        if (!cursor.seekFrom(key()) && !cursor.first())
            return;
        for (int i = 0; i < steps; ++i) {
            const Entry here{Bytes(cursor.key().begin(), cursor.key().end()), cursor.row()};
            if (random_() % 3 == 0 && model_.erase(here) != 0) {
                ASSERT_TRUE(tree_->remove(here.first, here.second));
            }
            if (random_() % 2 == 0)
                insertSome(1);
            else
                removeSome(1);
            const bool up = random_() % 4 != 0;
            const auto above = model_.upper_bound(here);
            const auto below = model_.lower_bound(here);
            const bool some = up ? above != model_.end() : below != model_.begin();
            ASSERT_EQ(up ? cursor.next() : cursor.previous(), some);
            if (!some)
                return;
            const auto& expected = up ? *above : *std::prev(below);
            ASSERT_EQ(Bytes(cursor.key().begin(), cursor.key().end()), expected.first);
            ASSERT_EQ(cursor.row(), expected.second);
        }
    }

    std::mt19937 random_{99};
    Tree tree_;
    Model model_;
};

TEST_P(RandomTree, IsASortedSet) {
    const int entries = GetParam().entries;
    for (int round = 0; round < 3; ++round) {
        insertSome(entries);
        expectSame(tree_.tree, model_);
        seekSome(200);
        walkWhileChanging(300);
        expectSame(tree_.tree, model_);
        for (int part = 0; part < 4; ++part) {
            removeSome(static_cast<int>(model_.size()) / (round == 1 ? 2 : 3));
            expectSame(tree_.tree, model_);
        }
        seekSome(100);
    }
    removeSome(static_cast<int>(model_.size()));
    expectSame(tree_.tree, model_);
    EXPECT_EQ(tree_->pages().pages(), std::vector<PageNumber>{2});
}

TEST_P(RandomTree, IsBuiltFromBelow) {
    for (const std::size_t count : {0, 1, 2, 40, GetParam().entries}) {
        while (model_.size() < count)
            model_.emplace(key(), row());
        std::vector<Entry> shuffled(model_.begin(), model_.end());
        std::shuffle(shuffled.begin(), shuffled.end(), random_);
        const auto build = [&](Tree& tree, std::size_t memory) {
            ExternalSort entries(memory);
            for (const auto& [one, at] : shuffled)
                entries.add(one, at);
            entries.sort();
            tree.clear();
            IndexBuilder builder(tree.tree);
            while (entries.next())
                builder.add(entries.entry());
            builder.finish();
            EXPECT_EQ(entries.size(), model_.size());
            return builder;
        };
        const IndexBuilder builder = build(tree_, ExternalSort::DefaultMemory);
        Tree inMemory;
        build(inMemory, ExternalSort::DefaultMemory);
        for (const std::size_t memory : {20, 3000, 20000}) { // runs of one entry, of some, of many
            Tree ofRuns;
            build(ofRuns, memory);
            EXPECT_TRUE(ofRuns.pager.image() == inMemory.pager.image()) << memory;
        }
        EXPECT_EQ(builder.entryCount(), model_.size());
        std::size_t distinct = 0;
        for (auto one = model_.begin(); one != model_.end();
             one = model_.upper_bound({one->first, {0xFFFFFF, 255}}))
            ++distinct;
        EXPECT_EQ(builder.distinctKeys(), distinct);
        expectSame(tree_.tree, model_);
    }
    insertSome(300);
    removeSome(300);
    expectSame(tree_.tree, model_);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, RandomTree,
    testing::Values(Shape{"Short", 3, 12, 200, 0, 4000}, Shape{"ManyEqual", 1, 2, 4, 0, 4000},
                    Shape{"LongShared", 60, 200, 3, 50, 2500}, Shape{"AllLengths", 1, 1799, 30, 0, 500},
                    Shape{"HugeShared", 1500, 1799, 2, 1480, 400}, Shape{"Huge", 1700, 1799, 2, 0, 300}),
    [](const auto& shape) { return std::string(shape.param.name); });

Bytes longKey(std::uint32_t number) {
    return {0x7F, static_cast<std::uint8_t>(number >> 24 ^ 0x80), static_cast<std::uint8_t>(number >> 16),
            static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number)};
}

TEST(IndexTree, AscendingKeysFillTheirLeaves) {
    Tree tree;
    for (std::uint32_t i = 0; i < 40000; ++i)
        tree->insert(longKey(i), {100 + i / 100, static_cast<std::uint8_t>(i % 100)});
    EXPECT_TRUE(faultsOf(tree.tree).empty());
    // 9 bytes an entry, 5 of them in the prefix only once the page is full
    EXPECT_LT(tree->pages().pages().size(), 40000u / 450);
    // Removing them from the front, one by one, frees page after page.
    for (std::uint32_t i = 0; i < 39999; ++i)
        ASSERT_TRUE(tree->remove(longKey(i), {100 + i / 100, static_cast<std::uint8_t>(i % 100)}));
    EXPECT_TRUE(faultsOf(tree.tree).empty());
    EXPECT_EQ(tree->pages().pages().size(), 1u);
}

TEST(IndexTree, RefusesWhatItHasAndWhatIsTooLong) {
    Tree tree;
    for (std::uint8_t row = 0; row < 3; ++row)
        tree->insert(longKey(5), {9, row});
    tree->insert(longKey(6), {9, 9});
    EXPECT_FALSE(tree->remove(longKey(6), {9, 8}));
    EXPECT_THROW(tree->insert(longKey(5), {9, 1}), Error);
    EXPECT_THROW(tree->insert(Bytes(1801, 1), {9, 1}), Error);
}

// A page that one index frees may next belong to another one of the same table, with the same bytes at the
// place that a cursor remembers.
TEST(IndexTree, ACursorKnowsThePagesOfItsIndex) {
    int met = 0;
    for (std::size_t leaf = 1; leaf < 4; ++leaf) {
        Tree tree;
        datapage::Add(tree.pager.edit(1), Bytes(UsageMapRowLength, 0));
        IndexTree other(tree.pager, tree.pager.allocate(), TablePage, UsageMap(tree.pager, {1, 1}));
        other.create();
        const auto insertFrom = [](IndexTree& into, std::uint32_t from) {
            for (std::uint32_t i = from; i < from + 2500; ++i)
                into.insert(longKey(i), {100, static_cast<std::uint8_t>(i % 100)});
        };
        insertFrom(tree.tree, 0);
        IndexCursor cursor(tree.tree);
        cursor.first();
        std::vector<std::uint32_t> firsts{0}; // first entries of the leaves
        for (std::uint32_t i = 0; i < 2500; ++i, cursor.next())
            for (const PageNumber page : tree->pages().pages())
                if (i != 0 && indexpage::IsLeaf(tree.pager.read(page)) &&
                    indexpage::HoldsKey(tree.pager.read(page), indexpage::Prefix(tree.pager.read(page)),
                                        longKey(i)))
                    firsts.push_back(i);
        ASSERT_GT(firsts.size(), leaf);
        const std::uint32_t first = firsts[leaf];
        ASSERT_TRUE(cursor.seekFrom(longKey(first)));
        // The cursor's leaf is freed before another one, and so allocated as the second of them.
        const auto removeFrom = [&](std::uint32_t from, std::uint32_t to) {
            for (std::uint32_t i = from; i < to; ++i)
                tree->remove(longKey(i), {100, static_cast<std::uint8_t>(i % 100)});
        };
        removeFrom(first, leaf + 1 < firsts.size() ? firsts[leaf + 1] : 2500);
        removeFrom(leaf == 1 ? firsts[leaf + 1] : firsts[1], leaf == 1 ? firsts[leaf + 2] : firsts[2]);
        insertFrom(other, first);
        for (const PageNumber page : other.pages().pages())
            met += indexpage::HoldsKey(tree.pager.read(page), indexpage::Prefix(tree.pager.read(page)),
                                       longKey(first))
                       ? 1
                       : 0;
        Model rest;
        ASSERT_TRUE(faultsOf(tree.tree, &rest).empty());
        const auto next = rest.lower_bound({longKey(first), {}});
        ASSERT_EQ(cursor.next(), next != rest.end());
        if (next != rest.end()) {
            ASSERT_EQ(Bytes(cursor.key().begin(), cursor.key().end()), next->first);
        }
    }
    EXPECT_GT(met, 0);
}

// Whatever overwrites a page, reading, walking, changing and checking end with an answer or an error.
TEST(IndexTree, DamagedPagesGiveErrors) {
    std::mt19937 random(5);
    for (int round = 0; round < 400; ++round) {
        Tree tree;
        for (std::uint32_t i = 0; i < 1500; ++i)
            tree->insert(longKey(i * 2654435761u), {100 + i / 100, static_cast<std::uint8_t>(i % 100)});
        const auto pages = tree->pages().pages();
        for (int hits = 1 + static_cast<int>(random() % 6); hits > 0; --hits) {
            std::uint8_t* page = tree.pager.edit(pages[random() % pages.size()]);
            const std::size_t at = random() % 3 == 0 ? random() % 0x1E0 : random() % PageSize;
            page[at] =
                static_cast<std::uint8_t>(random() % 2 == 0 ? random() : page[at] ^ 1u << random() % 8);
        }
        faultsOf(tree.tree);
        const auto survive = [](auto work) {
            try {
                work();
            } catch (const Error& error) {
                EXPECT_EQ(error.code(), ErrorNumber::ReadVerification);
            }
        };
        survive([&] {
            IndexCursor cursor(tree.tree);
            for (bool more = cursor.first(); more;)
                more = cursor.next();
        });
        survive([&] {
            IndexCursor cursor(tree.tree);
            for (bool more = cursor.last(); more;)
                more = cursor.previous();
        });
        for (std::uint32_t i = 0; i < 200; ++i)
            survive([&] {
                const std::uint32_t number = i * 7 % 1500;
                if (i % 3 == 0)
                    tree->insert(longKey(static_cast<std::uint32_t>(random())), {50, 1});
                else
                    tree->remove(longKey(number * 2654435761u),
                                 {100 + number / 100, static_cast<std::uint8_t>(number % 100)});
            });
    }
}

} // namespace
