// Path ordering for the vector converter: randomised 2-opt passes over the order of
// the paths' start points, with the draws made ahead on helper threads.
#include "pathorder.h"

#include <algorithm>
#include <cstring>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#if defined(__GNUC__) && defined(__x86_64__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

const int OrderAttemptsPerPath = 800;

// The minimal standard generator (multiplier 16807, modulus 2^31 - 1).
const uint32_t RandModulus = 2147483647u;
const uint32_t RandMultiplier = 16807u;
const uint32_t DrawLow = 1073741823u;  // a draw is (r - DrawLow) / 2^29 ...
const uint32_t DrawRange = 1u << 29;   // ... kept only when it lies in [0, 1]
const int DrawShift = 29;

typedef PathStart StartPoint;

// The minimal standard step, by the sum of the product's halves.
int32_t randNext(int32_t &state)
{
    const uint64_t p = uint64_t(uint32_t(state)) * RandMultiplier;
    int32_t r = int32_t(uint32_t((p >> 31) + (p & RandModulus)));
    if (r < 0)
        r = (r + 1) & int32_t(RandModulus);
    state = r;
    return r;
}

uint32_t mulMod(uint32_t x, uint32_t c)
{
    const uint64_t p = uint64_t(x) * c;
    uint64_t r = (p & RandModulus) + (p >> 31);
    r = (r & RandModulus) + (r >> 31);
    return uint32_t(r >= RandModulus ? r - RandModulus : r);
}

// Index draws for the 2-opt passes. Three of four raw numbers are thrown away and a
// large drawing asks for about a billion of them, so they are made many at a time by
// jumping ahead (x * 16807^k mod m is exactly the k-th next number) and kept without
// a branch. The numbers and their order are exactly those of randNext(). Values are
// reduced to [0, m + 1]: only 0 and 1 have two forms there, and neither is ever kept.
const int JumpWidth = 16;
struct DrawTable
{
    uint32_t jump[JumpWidth + 1];  // 16807^k mod m for k = 0..16
    uint32_t span;                 // draws are indices 0..span
    bool portable;
};

inline uint64_t foldMod(uint64_t p)
{
    const uint64_t r = (p & RandModulus) + (p >> 31);
    return (r & RandModulus) + (r >> 31);
}

DrawTable indexDraws(int span, bool portable)
{
    DrawTable table;
    table.jump[0] = 1;
    for (int k = 1; k <= JumpWidth; ++k)
        table.jump[k] = mulMod(table.jump[k - 1], RandMultiplier);
    table.span = uint32_t(span);
    table.portable = portable;
    return table;
}

// Keeps the draws among the `groups` * 16 raw numbers that follow `state`; returns
// how many were written to `out`, which holds one per raw number and 16 spare.
int drawPortable(const DrawTable &table, uint32_t state, int groups, int *out)
{
    uint32_t jump[JumpWidth + 1];  // local: the compiler cannot know `out` leaves it alone
    memcpy(jump, table.jump, sizeof jump);
    const uint64_t span = table.span;
    uint64_t x = state;
    int n = 0;
    for (int g = 0; g < groups; ++g) {
        uint64_t v[JumpWidth];
        for (int k = 0; k < JumpWidth; ++k)
            v[k] = foldMod(x * jump[k + 1]);
        x = v[JumpWidth - 1];
        for (int k = 0; k < JumpWidth; ++k) {
            const uint64_t off = v[k] - DrawLow;  // wraps far past DrawRange when r < DrawLow
            out[n] = int((off * span) >> DrawShift);
            n += off <= DrawRange;
        }
    }
    return n;
}

#if defined(__GNUC__) && defined(__x86_64__)
#define PATHORDER_HAVE_AVX2 1
__attribute__((target("avx2"))) inline __m256i foldModAvx2(__m256i p, __m256i modulus)
{
    const __m256i r = _mm256_add_epi64(_mm256_and_si256(p, modulus), _mm256_srli_epi64(p, 31));
    return _mm256_add_epi64(_mm256_and_si256(r, modulus), _mm256_srli_epi64(r, 31));
}

// Same numbers, four 64-bit lanes per register, four registers advancing 16 places each.
__attribute__((target("avx2"))) int drawAvx2(const DrawTable &table, uint32_t state, int groups, int *out)
{
    // Positions of the low 32 bits of the kept lanes, kept lanes first, for each 4-bit mask.
    alignas(32) static const int32_t pack[16][8] = {
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {2, 0, 0, 0, 0, 0, 0, 0}, {0, 2, 0, 0, 0, 0, 0, 0},
        {4, 0, 0, 0, 0, 0, 0, 0}, {0, 4, 0, 0, 0, 0, 0, 0}, {2, 4, 0, 0, 0, 0, 0, 0}, {0, 2, 4, 0, 0, 0, 0, 0},
        {6, 0, 0, 0, 0, 0, 0, 0}, {0, 6, 0, 0, 0, 0, 0, 0}, {2, 6, 0, 0, 0, 0, 0, 0}, {0, 2, 6, 0, 0, 0, 0, 0},
        {4, 6, 0, 0, 0, 0, 0, 0}, {0, 4, 6, 0, 0, 0, 0, 0}, {2, 4, 6, 0, 0, 0, 0, 0}, {0, 2, 4, 6, 0, 0, 0, 0}};
    const __m256i modulus = _mm256_set1_epi64x(RandModulus);
    const __m256i step = _mm256_set1_epi64x(table.jump[JumpWidth]);
    const __m256i low = _mm256_set1_epi64x(DrawLow);
    const __m256i minusOne = _mm256_set1_epi64x(-1);
    const __m256i limit = _mm256_set1_epi64x(int64_t(DrawRange) + 1);
    const __m256i span = _mm256_set1_epi64x(table.span);
    const uint64_t x = state;
    __m256i v[4];
    for (int g = 0; g < 4; ++g)
        v[g] = _mm256_setr_epi64x(
            int64_t(foldMod(x * table.jump[4 * g + 1])), int64_t(foldMod(x * table.jump[4 * g + 2])),
            int64_t(foldMod(x * table.jump[4 * g + 3])), int64_t(foldMod(x * table.jump[4 * g + 4])));
    int n = 0;
    for (int left = groups;;) {
        for (int g = 0; g < 4; ++g) {
            const __m256i off = _mm256_sub_epi64(v[g], low);
            const __m256i keep = _mm256_and_si256(_mm256_cmpgt_epi64(off, minusOne), _mm256_cmpgt_epi64(limit, off));
            const __m256i idx = _mm256_srli_epi64(_mm256_mul_epu32(off, span), DrawShift);
            const int mask = _mm256_movemask_pd(_mm256_castsi256_pd(keep));
            const __m256i packed =
                _mm256_permutevar8x32_epi32(idx, _mm256_load_si256(reinterpret_cast<const __m256i *>(pack[mask])));
            _mm_storeu_si128(reinterpret_cast<__m128i *>(out + n), _mm256_castsi256_si128(packed));
            n += __builtin_popcount(unsigned(mask));
        }
        if (--left == 0)
            break;
        for (int g = 0; g < 4; ++g)
            v[g] = foldModAvx2(_mm256_mul_epu32(v[g], step), modulus);
    }
    return n;
}
#endif

int drawIndices(const DrawTable &table, uint32_t state, int groups, int *out)
{
#ifdef PATHORDER_HAVE_AVX2
    if (!table.portable && __builtin_cpu_supports("avx2"))
        return drawAvx2(table, state, groups, out);
#endif
    return drawPortable(table, state, groups, out);
}

// The draws in order, made ahead on helper threads. Block b holds the draws kept
// among raw numbers b * R + 1 .. (b + 1) * R after the seed, so each helper jumps
// straight to its own blocks and the blocks join up in order whatever finishes first.
class DrawFeed
{
public:
    DrawFeed(const DrawTable &table, uint32_t seed, int helpers)
        : m_table(table), m_blocks(size_t(helpers) * SlotsPerHelper)
    {
        const uint32_t blockJump = powMod(RandMultiplier, uint64_t(GroupsPerBlock) * JumpWidth);
        const uint32_t helperJump = powMod(blockJump, uint64_t(helpers));
        uint32_t start = seed;
        for (int h = 0; h < helpers; ++h) {
            m_helpers.emplace_back(&DrawFeed::produce, this, h, helpers, start, helperJump);
            start = mulMod(start, blockJump);
        }
    }
    ~DrawFeed()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_stop = true;
        }
        m_changed.notify_all();
        for (std::thread &t : m_helpers)
            t.join();
    }

    // Copies the next `count` draws to `out`.
    void take(int *out, int count)
    {
        while (count > 0) {
            if (m_pos == m_count)
                nextBlock();
            const int n = std::min(count, m_count - m_pos);
            memcpy(out, m_current->draws.data() + m_pos, size_t(n) * sizeof(int));
            out += n;
            m_pos += n;
            count -= n;
        }
    }

private:
    static const int GroupsPerBlock = 1 << 14;
    static const int SlotsPerHelper = 3;

    struct Block
    {
        std::vector<int> draws = std::vector<int>(size_t(GroupsPerBlock + 1) * JumpWidth);
        int count = 0;
        long long number = -1;  // which block it holds; -1 while free
    };

    static uint32_t powMod(uint32_t base, uint64_t exponent)
    {
        uint32_t result = 1;
        while (exponent) {
            if (exponent & 1)
                result = mulMod(result, base);
            base = mulMod(base, base);
            exponent >>= 1;
        }
        return result;
    }

    void produce(int helper, int helpers, uint32_t state, uint32_t jump)
    {
        for (long long number = helper;; number += helpers) {
            Block &slot = m_blocks[size_t(number % (long long)m_blocks.size())];
            {
                std::unique_lock<std::mutex> lock(m_mutex);
                m_changed.wait(lock, [&] { return m_stop || slot.number < 0; });
                if (m_stop)
                    return;
            }
            const int count = drawIndices(m_table, state, GroupsPerBlock, slot.draws.data());
            state = mulMod(state, jump);
            {
                std::lock_guard<std::mutex> lock(m_mutex);
                slot.count = count;
                slot.number = number;
            }
            m_changed.notify_all();
        }
    }

    void nextBlock()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (m_current) {
            m_current->number = -1;
            m_changed.notify_all();
        }
        Block &slot = m_blocks[size_t(m_next % (long long)m_blocks.size())];
        m_changed.wait(lock, [&] { return slot.number == m_next; });
        ++m_next;
        m_current = &slot;
        m_count = slot.count;
        m_pos = 0;
    }

    const DrawTable m_table;
    std::vector<Block> m_blocks;
    std::vector<std::thread> m_helpers;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_stop = false;
    Block *m_current = nullptr;
    long long m_next = 0;
    int m_count = 0;
    int m_pos = 0;
};

// |A - A'|^2 + |B - B'|^2 > |A' - B'|^2 + |A - B|^2 for A, A' = a[0], a[1] and
// B, B' = b[0], b[1]: the two edges now against the two after a swap. Four squared
// lengths at once, each still dx*dx + dy*dy and the sums paired the same way, so
// the answer is bit for bit that of the plain single-precision sums.
inline bool longerThanSwapped(const StartPoint *a, const StartPoint *b)
{
#ifdef __SSE2__
    const __m128 p = _mm_loadu_ps(&a->x);                                 // ax ay a'x a'y
    const __m128 q = _mm_loadu_ps(&b->x);                                 // bx by b'x b'y
    __m128 edges = _mm_sub_ps(_mm_movelh_ps(p, q), _mm_movehl_ps(q, p));  // A - A', B - B'
    __m128 swapped = _mm_sub_ps(p, q);                                    // A - B, A' - B'
    edges = _mm_mul_ps(edges, edges);
    swapped = _mm_mul_ps(swapped, swapped);
    const __m128 squares = _mm_add_ps(_mm_shuffle_ps(edges, swapped, _MM_SHUFFLE(2, 0, 2, 0)),
                                      _mm_shuffle_ps(edges, swapped, _MM_SHUFFLE(3, 1, 3, 1)));
    const __m128 sums = _mm_add_ps(squares, _mm_shuffle_ps(squares, squares, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_comigt_ss(sums, _mm_movehl_ps(sums, sums));
#else
    auto dist2 = [](const StartPoint &p, const StartPoint &q) {
        const float dx = p.x - q.x, dy = p.y - q.y;
        return dx * dx + dy * dy;
    };
    return dist2(a[0], a[1]) + dist2(b[0], b[1]) > dist2(a[1], b[1]) + dist2(a[0], b[0]);
#endif
}

// The smaller and larger draw of an attempt by arithmetic: a branch here would be a coin toss.
inline void attemptEnds(const int *draw, int *a, int *b)
{
    const int d = draw[0] - draw[1];
    const int lower = d & (d >> 31);
    *a = draw[1] + lower;
    *b = draw[0] - lower;
}

// Bit t set when attempt t of `count` (draw pairs from `draws`) would swap. Both reads
// stay inside the order: a draw is at most n - 2.
uint64_t judgePlain(const int *draws, int from, int count, const StartPoint *at)
{
    uint64_t hits = 0;
    for (int t = from; t < count; ++t) {
        int a, b;
        attemptEnds(draws + 2 * t, &a, &b);
        const bool hit = (b - a >= 2) & longerThanSwapped(at + a, at + b);
        hits |= uint64_t(hit) << t;
    }
    return hits;
}

#ifdef PATHORDER_HAVE_AVX2
// Rows of four points (x0 y0 x1 y1) for eight attempts, two per register, into columns.
__attribute__((target("avx2"))) inline void columns(const __m256 *r, __m256 *x0, __m256 *y0, __m256 *x1, __m256 *y1)
{
    const __m256 t0 = _mm256_unpacklo_ps(r[0], r[1]);
    const __m256 t1 = _mm256_unpacklo_ps(r[2], r[3]);
    const __m256 t2 = _mm256_unpackhi_ps(r[0], r[1]);
    const __m256 t3 = _mm256_unpackhi_ps(r[2], r[3]);
    *x0 = _mm256_shuffle_ps(t0, t1, _MM_SHUFFLE(1, 0, 1, 0));
    *y0 = _mm256_shuffle_ps(t0, t1, _MM_SHUFFLE(3, 2, 3, 2));
    *x1 = _mm256_shuffle_ps(t2, t3, _MM_SHUFFLE(1, 0, 1, 0));
    *y1 = _mm256_shuffle_ps(t2, t3, _MM_SHUFFLE(3, 2, 3, 2));
}

__attribute__((target("avx2"))) inline __m256 dist2Avx2(__m256 px, __m256 py, __m256 qx, __m256 qy)
{
    const __m256 dx = _mm256_sub_ps(px, qx), dy = _mm256_sub_ps(py, qy);
    return _mm256_add_ps(_mm256_mul_ps(dx, dx), _mm256_mul_ps(dy, dy));
}

// Eight attempts at a time: the four points of each loaded as two pairs, turned into
// rows of x and y, each squared length still dx*dx + dy*dy (no fused multiply-add) and
// the sums paired as in longerThanSwapped, so every answer is the same bit.
__attribute__((target("avx2"))) uint64_t judgeAvx2(const int *draws, int from, int count, const StartPoint *at)
{
    uint64_t hits = 0;
    int t = from;
    for (; t + 8 <= count; t += 8) {
        __m256 rowA[4], rowB[4];
        unsigned valid = 0;
        for (int k = 0; k < 4; ++k) {
            int a0, b0, a1, b1;
            attemptEnds(draws + 2 * (t + k), &a0, &b0);
            attemptEnds(draws + 2 * (t + k + 4), &a1, &b1);
            valid |= unsigned(b0 - a0 >= 2) << k;
            valid |= unsigned(b1 - a1 >= 2) << (k + 4);
            rowA[k] = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(&at[a0].x)), _mm_loadu_ps(&at[a1].x), 1);
            rowB[k] = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm_loadu_ps(&at[b0].x)), _mm_loadu_ps(&at[b1].x), 1);
        }
        __m256 ax, ay, a1x, a1y, bx, by, b1x, b1y;
        columns(rowA, &ax, &ay, &a1x, &a1y);
        columns(rowB, &bx, &by, &b1x, &b1y);
        const __m256 now = _mm256_add_ps(dist2Avx2(ax, ay, a1x, a1y), dist2Avx2(bx, by, b1x, b1y));
        const __m256 swapped = _mm256_add_ps(dist2Avx2(ax, ay, bx, by), dist2Avx2(a1x, a1y, b1x, b1y));
        const unsigned longer = unsigned(_mm256_movemask_ps(_mm256_cmp_ps(now, swapped, _CMP_GT_OQ)));
        hits |= uint64_t(longer & valid) << t;
    }
    return hits | judgePlain(draws, t, count, at);
}
#endif

// Reverses order[from..to] and at[from..to] together. The first pass of a large drawing
// makes long reversals by the hundred thousand, so they run eight and four at a time.
void reverseSpan(int *order, StartPoint *at, int from, int to, bool portable);

#ifdef PATHORDER_HAVE_AVX2
__attribute__((target("avx2"))) void reverseSpanAvx2(int *order, StartPoint *at, int from, int to)
{
    int i = from, j = to;
    const __m256i backwards = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0);
    for (; j - i + 1 >= 16; i += 8, j -= 8) {
        const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(order + i));
        const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(order + j - 7));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(order + i), _mm256_permutevar8x32_epi32(high, backwards));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(order + j - 7), _mm256_permutevar8x32_epi32(low, backwards));
        for (int half = 0; half < 2; ++half) {
            const int a = i + 4 * half, b = j - 3 - 4 * half;
            const __m256i p = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(at + a));
            const __m256i q = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(at + b));
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(at + a),
                                _mm256_permute4x64_epi64(q, _MM_SHUFFLE(0, 1, 2, 3)));
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(at + b),
                                _mm256_permute4x64_epi64(p, _MM_SHUFFLE(0, 1, 2, 3)));
        }
    }
    std::reverse(order + i, order + j + 1);
    std::reverse(at + i, at + j + 1);
}
#endif

void reverseSpan(int *order, StartPoint *at, int from, int to, bool portable)
{
#ifdef PATHORDER_HAVE_AVX2
    if (!portable && __builtin_cpu_supports("avx2")) {
        reverseSpanAvx2(order, at, from, to);
        return;
    }
#endif
    std::reverse(order + from, order + to + 1);
    std::reverse(at + from, at + to + 1);
}

// One 2-opt pass over the path order; `at` holds the start point of the path at each position.
// Swaps are rare after the first pass, so the attempts are judged a block at a time
// without branches against the order as it stands; after a swap the block goes on from
// the attempt after it, exactly as one attempt after the other would.
void twoOptPass(int n, int *order, StartPoint *at, DrawFeed &feed, bool portable)
{
    // With three paths or fewer no two draws can differ by 2: nothing would change.
    if (n < 4)
        return;
    uint64_t (*judge)(const int *, int, int, const StartPoint *) = judgePlain;
#ifdef PATHORDER_HAVE_AVX2
    if (!portable && __builtin_cpu_supports("avx2"))
        judge = judgeAvx2;
#endif
    const int Block = 64;
    int draws[2 * Block];
    const long long attempts = (long long)n * OrderAttemptsPerPath;
    for (long long k = 0; k < attempts; k += Block) {
        const int m = int(std::min<long long>(Block, attempts - k));
        feed.take(draws, 2 * m);
        int from = 0;
        for (;;) {
            const uint64_t hits = judge(draws, from, m, at);
            if (!hits)
                break;
            const int t = __builtin_ctzll(hits);
            int a, b;
            attemptEnds(draws + 2 * t, &a, &b);
            reverseSpan(order, at, a + 1, b, portable);
            from = t + 1;
        }
    }
}

// Helpers that make draws while this thread judges the attempts: one core for each,
// the one left over for this thread.
int feedHelpers()
{
    const int cores = int(std::thread::hardware_concurrency());
    return std::min(3, std::max(1, cores - 1));
}

}  // namespace

uint32_t pathOrderSeed(double now)
{
    const long long t = (long long)(now + 0.5);
    const long long base = t == 0 ? (long long)(now - 1) : t - 1;
    long long seed = base % 2147483646LL + 1;
    if (seed <= 0)
        seed += 2147483646LL;  // only a fixed seed below 1 gets here; zero would stall the generator
    int32_t state = int32_t(seed);
    randNext(state);  // the draws start two steps past the seed
    return uint32_t(randNext(state));
}

void orderPaths(int n, int *order, PathStart *at, uint32_t seed, int passes, bool portable,
                const std::function<void(int)> &passDone)
{
    if (n < 4) {
        for (int pass = 0; pass < passes; ++pass)
            passDone(pass);
        return;
    }
    DrawFeed feed(indexDraws(n - 2, portable), seed, feedHelpers());
    for (int pass = 0; pass < passes; ++pass) {
        twoOptPass(n, order, at, feed, portable);
        passDone(pass);
    }
}
