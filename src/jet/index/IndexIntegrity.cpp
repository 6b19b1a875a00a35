#include "jet/index/IndexIntegrity.h"

#include "jet/base/Damage.h"
#include "jet/index/IndexPath.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace jet {

using namespace indexpage;

namespace {

class Checker {
public:
    Checker(const IndexTree& tree, const std::function<void(IndexFault)>& report,
            const std::function<void(KeyView, RowPointer)>& visit)
        : tree_(tree)
        , report_(report)
        , visit_(visit) {}

    std::vector<PageNumber> run() {
        Bytes last;
        walk(tree_.root(), 0, last);
        // Other engines write no levels into nodes.
        for (const Node& node : nodes_)
            if (node.level != 0 && node.level != leafDepth_ - node.depth)
                fault(node.page, "has another level in the index than its place says");
        for (const Edge& edge : edges_)
            if (edge.next != 0)
                fault(edge.page, "names a next index page, but is the last one of its level");
        compareMap();
        return {seen_.begin(), seen_.end()};
    }

private:
    // The page of a level that was visited last.
    struct Edge {
        PageNumber page = 0;
        PageNumber next = 0;
    };

    struct Node {
        PageNumber page = 0;
        int level = 0;
        int depth = 0;
    };

    void fault(PageNumber page, const std::string& reason) { report_({page, reason}); }

    // Visits a page and everything below it. `last` becomes the last entry there; it is empty if there is
    // none.
    void walk(PageNumber number, int depth, Bytes& last) {
        last.clear();
        if (depth > IndexPath::MaximumDepth)
            return fault(number, "lies too deep in the index");
        if (!seen_.insert(number).second)
            return fault(number, "is met twice in the index");
        std::uint8_t page[PageSize];
        try {
            std::memcpy(page, tree_.pager().read(number), PageSize);
            Check(page, number, tree_.table());
        } catch (const Error& error) {
            seen_.erase(number);
            return fault(number, error.what());
        }
        const Head head = ReadHead(page);
        checkHead(number, head, depth);
        if (!checkMarks(number, page))
            return;
        if (head.leaf)
            walkLeaf(number, page, last);
        else
            walkNode(number, page, depth, last);
    }

    void checkHead(PageNumber number, const Head& head, int depth) {
        if (!head.leaf)
            nodes_.push_back({number, head.level, depth});
        else if (head.level != 0)
            fault(number, "is a leaf with a level");
        if (leafDepth_ >= 0 && head.leaf != (depth == leafDepth_))
            fault(number, "lies at another depth than the other leaves of the index");
        if (head.leaf && leafDepth_ < 0)
            leafDepth_ = depth;
        if (head.leaf && head.tail != 0)
            fault(number, "is a leaf that names a child");
        const auto at = static_cast<std::size_t>(depth);
        if (edges_.size() <= at)
            edges_.resize(at + 1);
        Edge& edge = edges_[at];
        // Nodes may be unlinked.
        const bool linked = head.leaf || edge.next != 0 || head.previous != 0;
        if (linked && (head.previous != edge.page || (edge.page != 0 && edge.next != number)))
            fault(number, "is not linked with the index page before it");
        edge = {number, head.next};
    }

    // Marks in order, none after the last entry, and entries of a possible length.
    bool checkMarks(PageNumber number, const std::uint8_t* page) {
        if (CountMarks(page) != CountEntries(page)) {
            fault(number, "has marks where no index entry ends");
            return false;
        }
        const int child = IsLeaf(page) ? 0 : ChildLength;
        for (int offset = Prefix(page); offset < Used(page); offset = End(page, offset)) {
            const int rest = End(page, offset) - offset - child;
            const int length = Prefix(page) + rest;
            if (rest < 0 || length <= RowLength || length > static_cast<int>(MaximumEntry)) {
                fault(number, "has an index entry of " + std::to_string(length) + " bytes");
                return false;
            }
        }
        return true;
    }

    void walkLeaf(PageNumber number, const std::uint8_t* page, Bytes& last) {
        if (IsEmpty(page) && number != tree_.root())
            fault(number, "is an empty leaf of the index");
        EntryBuffer entry;
        for (int offset = Prefix(page); offset < Used(page); offset = End(page, offset)) {
            CopyEntry(page, number, offset, entry);
            const KeyView view = entry.view();
            if (!std::lexicographical_compare(before_.begin(), before_.end(), view.begin(), view.end()))
                fault(number, "has index entries out of order");
            before_.assign(view.begin(), view.end());
            if (visit_)
                visit_(entry.key(), entry.row());
        }
        if (!IsEmpty(page))
            last = before_;
    }

    void walkNode(PageNumber number, const std::uint8_t* page, int depth, Bytes& last) {
        if (IsEmpty(page))
            fault(number, "is an index node with a single child");
        EntryBuffer entry;
        for (int offset = Prefix(page); offset < Used(page); offset = End(page, offset)) {
            CopyEntry(page, number, offset, entry);
            Bytes below;
            walk(Child(page, number, offset), depth + 1, below);
            const KeyView view = entry.view();
            if (!std::equal(below.begin(), below.end(), view.begin(), view.end()))
                fault(number, "has an index entry that is not the last one of its child");
        }
        walk(Tail(page), depth + 1, last);
    }

    void compareMap() {
        std::vector<PageNumber> listed;
        try {
            listed = tree_.pages().pages();
        } catch (const Error& error) {
            return fault(tree_.pages().row().page, error.what());
        }
        for (const PageNumber page : listed)
            if (seen_.count(page) == 0)
                fault(page, "is listed as a page of the index, but is not in it");
        const std::set<PageNumber> set(listed.begin(), listed.end());
        for (const PageNumber page : seen_)
            if (set.count(page) == 0)
                fault(page, "is in the index, but not listed as a page of it");
    }

    const IndexTree& tree_;
    const std::function<void(IndexFault)>& report_;
    const std::function<void(KeyView, RowPointer)>& visit_;
    std::set<PageNumber> seen_;
    std::vector<Edge> edges_; // of each depth
    std::vector<Node> nodes_;
    int leafDepth_ = -1;
    Bytes before_; // the entry before
};

} // namespace

std::vector<PageNumber> CheckIndex(const IndexTree& tree, const std::function<void(IndexFault)>& report,
                                   const std::function<void(KeyView, RowPointer)>& visit) {
    return Checker(tree, report, visit).run();
}

} // namespace jet
