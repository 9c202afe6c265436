#include "memory/snmpindex_p.h"

#include "memory/baserawtype.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

// Above this many table cells (states x character classes) no automaton is
// built and each item reads the set on its own: only many long addresses
// written in many different characters get there.
constexpr size_t maxCells = size_t(1) << 22;

// Character classes live in a byte for ASCII.
constexpr int maxClasses = 255;

} // namespace

// The automaton is a full transition table over the characters the
// addresses use (class 0 stands for every other character, which leads back
// to the root), so each character of an OID costs one table step.
struct SnmpIndex::Build
{
    std::vector<QString> patterns; // the distinct non-empty start addresses
    std::vector<int> patternOf; // per slot, -1 for an empty address
    bool usable = false;
    size_t classes = 1;
    std::array<quint8, 128> ascii {};
    QHash<ushort, int> wide;
    std::vector<int> next; // states x classes
    std::vector<int> out; // the address that ends at a state, or -1
    std::vector<int> report; // first state on the suffix chain, the state itself included, that ends one
    std::vector<int> chain; // the next such state further down the chain

    int classOf(ushort u) const
    {
        if (u < 128)
            return ascii[u];
        return wide.isEmpty() ? 0 : wide.value(u, 0);
    }

    bool make();

    // Calls found(address) for every address ending at every place of text.
    template<typename Found> void scan(const QString &text, Found found) const
    {
        const QChar *data = text.constData();
        const int n = text.size();
        size_t state = 0;
        for (int i = 0; i < n; ++i) {
            state = size_t(next[state * classes + size_t(classOf(data[i].unicode()))]);
            for (int r = report[state]; r >= 0; r = chain[size_t(r)])
                found(out[size_t(r)]);
        }
    }
};

bool SnmpIndex::Build::make()
{
    for (const QString &pattern : patterns) {
        for (const QChar ch : pattern) {
            const ushort u = ch.unicode();
            if (classOf(u) != 0)
                continue;
            if (classes >= size_t(maxClasses))
                return false;
            if (u < 128)
                ascii[u] = quint8(classes);
            else
                wide.insert(u, int(classes));
            ++classes;
        }
    }

    // The trie of the addresses.
    next.assign(classes, -1);
    out.assign(1, -1);
    for (size_t p = 0; p < patterns.size(); ++p) {
        size_t state = 0;
        for (const QChar ch : patterns[p]) {
            const size_t cell = state * classes + size_t(classOf(ch.unicode()));
            if (next[cell] < 0) {
                if (next.size() + classes > maxCells)
                    return false;
                next[cell] = int(out.size());
                out.push_back(-1);
                next.resize(next.size() + classes, -1);
            }
            state = size_t(next[cell]);
        }
        out[state] = int(p);
    }

    // Breadth first, so that a state's fallback is complete before the
    // state's own missing transitions are copied from it.
    const size_t states = out.size();
    std::vector<int> fallback(states, 0);
    report.assign(states, -1);
    chain.assign(states, -1);
    std::vector<int> queue;
    queue.reserve(states);
    for (size_t c = 0; c < classes; ++c) {
        if (next[c] < 0)
            next[c] = 0;
        else
            queue.push_back(next[c]);
    }
    for (size_t q = 0; q < queue.size(); ++q) {
        const size_t state = size_t(queue[q]);
        const size_t back = size_t(fallback[state]);
        chain[state] = out[back] >= 0 ? int(back) : chain[back];
        report[state] = out[state] >= 0 ? int(state) : chain[state];
        for (size_t c = 0; c < classes; ++c) {
            int &target = next[state * classes + c];
            const int viaBack = next[back * classes + c];
            if (target < 0) {
                target = viaBack;
            } else {
                fallback[size_t(target)] = viaBack;
                queue.push_back(target);
            }
        }
    }
    return true;
}

void SnmpIndex::itemAdded(int slot)
{
    if (slot < 0)
        return;
    if (size_t(slot) >= fresh.size())
        fresh.resize(size_t(slot) + 1, false);
    fresh[size_t(slot)] = true;
}

QVector<QPair<int, int>> SnmpIndex::refresh(const QVector<BaseRawType *> &items)
{
    QVector<QPair<int, int>> overlaps;
    const size_t n = size_t(items.size());
    fresh.resize(n, false);
    addresses.resize(n);
    bool changed = !build;
    for (size_t i = 0; i < n; ++i) {
        const QString &address = items[int(i)]->getSnmpStartAddress();
        if (fresh[i] || address != addresses[i]) {
            addresses[i] = address;
            fresh[i] = true;
            changed = true;
        }
    }
    if (!changed)
        return overlaps;

    auto made = std::make_shared<Build>();
    made->patternOf.assign(n, -1);
    QHash<QString, int> ids;
    for (size_t i = 0; i < n; ++i) {
        if (addresses[i].isEmpty())
            continue;
        auto id = ids.constFind(addresses[i]);
        if (id == ids.cend()) {
            id = ids.insert(addresses[i], int(made->patterns.size()));
            made->patterns.push_back(addresses[i]);
        }
        made->patternOf[i] = id.value();
    }
    made->usable = made->make();

    // Each address run through the automaton finds the addresses within it.
    if (made->usable) {
        std::vector<std::vector<int>> slotsOf(made->patterns.size());
        for (size_t i = 0; i < n; ++i) {
            if (made->patternOf[i] >= 0)
                slotsOf[size_t(made->patternOf[i])].push_back(int(i));
        }
        std::vector<size_t> seen(made->patterns.size(), made->patterns.size());
        for (size_t o = 0; o < made->patterns.size() && overlaps.size() <= maxOverlaps; ++o) {
            made->scan(made->patterns[o], [&](int p) {
                if (seen[size_t(p)] == o)
                    return;
                seen[size_t(p)] = o;
                const std::vector<int> &inner = slotsOf[size_t(p)];
                const std::vector<int> &outer = slotsOf[o];
                for (size_t x = 0; x < inner.size(); ++x) {
                    // Equal addresses are one pattern: each pair once.
                    for (size_t y = size_t(p) == o ? x + 1 : 0; y < outer.size(); ++y) {
                        const int a = inner[x];
                        const int b = outer[y];
                        if ((fresh[size_t(a)] || fresh[size_t(b)]) && overlaps.size() <= maxOverlaps)
                            overlaps.append(qMakePair(a, b));
                    }
                }
            });
        }
    }
    build = std::move(made);
    std::fill(fresh.begin(), fresh.end(), false);
    return overlaps;
}

QString SnmpIndex::anAddress() const
{
    return build && !build->patterns.empty() ? build->patterns.front() : QString();
}

thread_local SnmpIndex::Pass *SnmpIndex::Pass::active = nullptr;

SnmpIndex::Pass::Pass(const SnmpIndex &index, const Variables *variables, Variables &lastSent)
    : build(index.build)
    , variables(variables)
    , snapshot(*variables)
    , outer(active)
{
    active = this;
    if (!build || !build->usable || build->patterns.empty()) {
        for (auto it = snapshot.cbegin(); it != snapshot.cend(); ++it)
            lastSent.insert(it.key(), it.value());
        return;
    }

    // Each OID once; an address found several times in one OID counts once.
    const size_t count = build->patterns.size();
    std::vector<std::pair<int, Variables::const_iterator>> found;
    found.reserve(size_t(snapshot.size()));
    std::vector<int> stamp(count, -1);
    int oid = 0;
    for (auto it = snapshot.cbegin(); it != snapshot.cend(); ++it, ++oid) {
        lastSent.insert(it.key(), it.value());
        build->scan(it.key(), [&](int p) {
            if (stamp[size_t(p)] != oid) {
                stamp[size_t(p)] = oid;
                found.emplace_back(p, it);
            }
        });
    }

    // Grouped by address, in one counting pass.
    first.assign(count + 1, 0);
    for (const auto &f : found)
        ++first[size_t(f.first) + 1];
    for (size_t p = 0; p < count; ++p)
        first[p + 1] += first[p];
    hits.resize(found.size());
    std::vector<int> fill(first.begin(), first.end() - 1);
    for (const auto &f : found)
        hits[size_t(fill[size_t(f.first)]++)] = f.second;
}

SnmpIndex::Pass::~Pass()
{
    active = outer;
}

void SnmpIndex::Pass::visit(int place, const BaseRawType *item)
{
    slot = place;
    current = item;
}

bool SnmpIndex::Pass::tookNothing() const
{
    return taken == 0 && hits.empty();
}

bool SnmpIndex::Pass::takeShared(const BaseRawType *item, const Variables &variables, Variables &into)
{
    Pass *pass = active;
    if (!pass || pass->current != item || pass->variables != &variables || pass->first.empty())
        return false;
    // An item before this one changed the set, which detached it from the
    // snapshot: what was matched no longer tells.
    if (variables.constBegin() != pass->snapshot.constBegin())
        return false;
    const Build &build = *pass->build;
    if (size_t(pass->slot) >= build.patternOf.size())
        return false;
    const int pattern = build.patternOf[size_t(pass->slot)];
    if (pattern < 0 || build.patterns[size_t(pattern)] != item->getSnmpStartAddress())
        return false;
    const int begin = pass->first[size_t(pattern)];
    const int end = pass->first[size_t(pattern) + 1];
    for (int k = begin; k < end; ++k) {
        const Variables::const_iterator &hit = pass->hits[size_t(k)];
        into.insert(hit.key(), hit.value());
    }
    pass->taken += end - begin;
    return true;
}

void SnmpIndex::Pass::noteTaken(int count)
{
    if (active)
        active->taken += count;
}
