// The SVG-to-G-code path converter: flattens the drawing's Bezier segments, orders
// the paths for short travel and writes laser or CNC G-code with C stdio.
#include "pathconverter.h"

#include "svgreader.h"
#include "workarea.h"

#include <algorithm>
#include <cfloat>
#include <chrono>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <condition_variable>
#include <locale.h>
#include <mutex>
#include <thread>
#include <vector>

#if defined(__GNUC__) && defined(__x86_64__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

const int HeaderSize = 64;
const int LaserLineSize = 32;
const int MaxBezPoints = 4096;
const float BezTolerance = 0.5f;
const int BezMaxDepth = 12;
const float WorkAreaHeight = float(WorkArea::Height);   // machine Y is flipped against it, whatever maxy says
const float ZStep = 0.001f;
const float ZScale = 0.0625f;
const float ZReturnScale = 0.5f;
const float ReducedPowerDistance = 0.0f;  // no point is ever this close: always full power
const float Acceleration = 300.0f;        // mm/s^2, for the time estimate
const int OrderPasses = 30;
const int OrderAttemptsPerPath = 800;

// The minimal standard generator (multiplier 16807, modulus 2^31 - 1).
const uint32_t RandModulus = 2147483647u;
const uint32_t RandMultiplier = 16807u;
const uint32_t DrawLow = 1073741823u;     // a draw is (r - DrawLow) / 2^29 ...
const uint32_t DrawRange = 1u << 29;      // ... kept only when it lies in [0, 1]
const int DrawShift = 29;

// Module-wide settings, kept between conversions.
char g_header[HeaderSize];
int g_printMode = 0;
float g_travelSpeed = 0;
float g_feedSpeed = 0;
float g_printZ = 0;
float g_travelZ = 0;
int g_machineYmax = 0;
char g_laserOn[LaserLineSize];
char g_laserReduced[LaserLineSize];
int g_width = 0;
int g_height = 0;
float g_xoffset = 0;
float g_yoffset = 0;
int g_bezier = 0;
bool g_fixedSeed = false;
long long g_seedSeconds = 0;
float g_estimate = 0;

// State of one conversion.
float g_bounds[4];  // min x, min y, max x, max y in parsed units
float g_scale = 0;
int g_npaths = 0;
int g_npoints = 0;
struct BezPoint { float x, y; };
BezPoint *g_bezPoints = nullptr;
int g_nbez = 0;
int32_t g_rand = 1;

struct Segment
{
    float x0, y0, x1, y1, x2, y2, x3, y3;
    int32_t path;  // -1 once written
    unsigned char closed;
};

// Restores the caller's locale on every way out: printf must write a decimal point
// even when the desktop's language writes a comma.
class CNumericLocale
{
public:
    CNumericLocale()
    {
        static locale_t cLocale = newlocale(LC_NUMERIC_MASK, "C", locale_t(nullptr));
        m_previous = cLocale ? uselocale(cLocale) : locale_t(nullptr);
    }
    ~CNumericLocale()
    {
        if (m_previous)
            uselocale(m_previous);
    }

private:
    locale_t m_previous;
};

int32_t randNext()
{
    const uint64_t p = uint64_t(uint32_t(g_rand)) * RandMultiplier;
    int32_t r = int32_t(uint32_t((p >> 31) + (p & RandModulus)));
    if (r < 0)
        r = (r + 1) & int32_t(RandModulus);
    g_rand = r;
    return r;
}

uint32_t mulMod(uint32_t x, uint32_t c)
{
    const uint64_t p = uint64_t(x) * c;
    uint64_t r = (p & RandModulus) + (p >> 31);
    r = (r & RandModulus) + (r >> 31);
    return uint32_t(r >= RandModulus ? r - RandModulus : r);
}

void seedRandom()
{
    double now;
    if (g_fixedSeed) {
        now = double(g_seedSeconds);
    } else {
        now = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    }
    const long long t = (long long)(now + 0.5);
    const long long base = t == 0 ? (long long)(now - 1) : t - 1;
    long long seed = base % 2147483646LL + 1;
    if (seed <= 0)
        seed += 2147483646LL;  // only a fixed seed below 1 gets here; zero would stall the generator
    g_rand = int32_t(seed);
    randNext();
    randNext();
}

// Index draws for the 2-opt passes. Three of four raw numbers are thrown away and a
// large drawing asks for about a billion of them, so they are made many at a time by
// jumping ahead (x * 16807^k mod m is exactly the k-th next number) and kept without
// a branch. The numbers and their order are exactly those of randNext(). Values are
// reduced to [0, m + 1]: only 0 and 1 have two forms there, and neither is ever kept.
const int JumpWidth = 16;
uint32_t g_jump[JumpWidth + 1];  // 16807^k mod m for k = 0..16
uint32_t g_indexSpan = 0;
bool g_portableDraws = false;

inline uint64_t foldMod(uint64_t p)
{
    const uint64_t r = (p & RandModulus) + (p >> 31);
    return (r & RandModulus) + (r >> 31);
}

void startIndexDraws(int span)
{
    g_jump[0] = 1;
    for (int k = 1; k <= JumpWidth; ++k)
        g_jump[k] = mulMod(g_jump[k - 1], RandMultiplier);
    g_indexSpan = uint32_t(span);
}

// Keeps the draws among the `groups` * 16 raw numbers that follow `state`; returns
// how many were written to `out`, which holds one per raw number and 16 spare.
int drawPortable(uint32_t state, int groups, int *out)
{
    uint64_t x = state;
    int n = 0;
    for (int g = 0; g < groups; ++g) {
        uint64_t v[JumpWidth];
        for (int k = 0; k < JumpWidth; ++k)
            v[k] = foldMod(x * g_jump[k + 1]);
        x = v[JumpWidth - 1];
        for (int k = 0; k < JumpWidth; ++k) {
            const uint64_t off = v[k] - DrawLow;  // wraps far past DrawRange when r < DrawLow
            out[n] = int((off * g_indexSpan) >> DrawShift);
            n += off <= DrawRange;
        }
    }
    return n;
}

#if defined(__GNUC__) && defined(__x86_64__)
#define PATHCONV_HAVE_AVX2 1
__attribute__((target("avx2"))) inline __m256i foldModAvx2(__m256i p, __m256i modulus)
{
    const __m256i r = _mm256_add_epi64(_mm256_and_si256(p, modulus), _mm256_srli_epi64(p, 31));
    return _mm256_add_epi64(_mm256_and_si256(r, modulus), _mm256_srli_epi64(r, 31));
}

// Same numbers, four 64-bit lanes per register, four registers advancing 16 places each.
__attribute__((target("avx2"))) int drawAvx2(uint32_t state, int groups, int *out)
{
    // Positions of the low 32 bits of the kept lanes, kept lanes first, for each 4-bit mask.
    alignas(32) static const int32_t pack[16][8] = {
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {2, 0, 0, 0, 0, 0, 0, 0}, {0, 2, 0, 0, 0, 0, 0, 0},
        {4, 0, 0, 0, 0, 0, 0, 0}, {0, 4, 0, 0, 0, 0, 0, 0}, {2, 4, 0, 0, 0, 0, 0, 0}, {0, 2, 4, 0, 0, 0, 0, 0},
        {6, 0, 0, 0, 0, 0, 0, 0}, {0, 6, 0, 0, 0, 0, 0, 0}, {2, 6, 0, 0, 0, 0, 0, 0}, {0, 2, 6, 0, 0, 0, 0, 0},
        {4, 6, 0, 0, 0, 0, 0, 0}, {0, 4, 6, 0, 0, 0, 0, 0}, {2, 4, 6, 0, 0, 0, 0, 0}, {0, 2, 4, 6, 0, 0, 0, 0}};
    const __m256i modulus = _mm256_set1_epi64x(RandModulus);
    const __m256i step = _mm256_set1_epi64x(g_jump[JumpWidth]);
    const __m256i low = _mm256_set1_epi64x(DrawLow);
    const __m256i minusOne = _mm256_set1_epi64x(-1);
    const __m256i limit = _mm256_set1_epi64x(int64_t(DrawRange) + 1);
    const __m256i span = _mm256_set1_epi64x(g_indexSpan);
    const uint64_t x = state;
    __m256i v[4];
    for (int g = 0; g < 4; ++g)
        v[g] = _mm256_setr_epi64x(int64_t(foldMod(x * g_jump[4 * g + 1])), int64_t(foldMod(x * g_jump[4 * g + 2])),
                                  int64_t(foldMod(x * g_jump[4 * g + 3])), int64_t(foldMod(x * g_jump[4 * g + 4])));
    int n = 0;
    for (int left = groups;;) {
        for (int g = 0; g < 4; ++g) {
            const __m256i off = _mm256_sub_epi64(v[g], low);
            const __m256i keep = _mm256_and_si256(_mm256_cmpgt_epi64(off, minusOne), _mm256_cmpgt_epi64(limit, off));
            const __m256i idx = _mm256_srli_epi64(_mm256_mul_epu32(off, span), DrawShift);
            const int mask = _mm256_movemask_pd(_mm256_castsi256_pd(keep));
            const __m256i packed = _mm256_permutevar8x32_epi32(idx, _mm256_load_si256(reinterpret_cast<const __m256i *>(pack[mask])));
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

int drawIndices(uint32_t state, int groups, int *out)
{
#ifdef PATHCONV_HAVE_AVX2
    if (!g_portableDraws && __builtin_cpu_supports("avx2"))
        return drawAvx2(state, groups, out);
#endif
    return drawPortable(state, groups, out);
}

// The draws in order, made ahead on helper threads. Block b holds the draws kept
// among raw numbers b * R + 1 .. (b + 1) * R after the seed, so each helper jumps
// straight to its own blocks and the blocks join up in order whatever finishes first.
class DrawFeed
{
public:
    DrawFeed(uint32_t seed, int helpers)
        : m_blocks(size_t(helpers) * SlotsPerHelper)
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
            const int count = drawIndices(state, GroupsPerBlock, slot.draws.data());
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

struct StartPoint { float x, y; };

// |A - A'|^2 + |B - B'|^2 > |A' - B'|^2 + |A - B|^2 for A, A' = a[0], a[1] and
// B, B' = b[0], b[1]: the two edges now against the two after a swap. Four squared
// lengths at once, each still dx*dx + dy*dy and the sums paired the same way, so
// the answer is bit for bit that of the plain single-precision sums.
inline bool longerThanSwapped(const StartPoint *a, const StartPoint *b)
{
#ifdef __SSE2__
    const __m128 p = _mm_loadu_ps(&a->x);  // ax ay a'x a'y
    const __m128 q = _mm_loadu_ps(&b->x);  // bx by b'x b'y
    __m128 edges = _mm_sub_ps(_mm_movelh_ps(p, q), _mm_movehl_ps(q, p));  // A - A', B - B'
    __m128 swapped = _mm_sub_ps(p, q);                                       // A - B, A' - B'
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

#ifdef PATHCONV_HAVE_AVX2
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
void reverseSpan(int *order, StartPoint *at, int from, int to);

#ifdef PATHCONV_HAVE_AVX2
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
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(at + a), _mm256_permute4x64_epi64(q, _MM_SHUFFLE(0, 1, 2, 3)));
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(at + b), _mm256_permute4x64_epi64(p, _MM_SHUFFLE(0, 1, 2, 3)));
        }
    }
    std::reverse(order + i, order + j + 1);
    std::reverse(at + i, at + j + 1);
}
#endif

void reverseSpan(int *order, StartPoint *at, int from, int to)
{
#ifdef PATHCONV_HAVE_AVX2
    if (!g_portableDraws && __builtin_cpu_supports("avx2")) {
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
void twoOptPass(int n, int *order, StartPoint *at, DrawFeed &feed)
{
    // With three paths or fewer no two draws can differ by 2: nothing would change.
    if (n < 4)
        return;
    uint64_t (*judge)(const int *, int, int, const StartPoint *) = judgePlain;
#ifdef PATHCONV_HAVE_AVX2
    if (!g_portableDraws && __builtin_cpu_supports("avx2"))
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
            reverseSpan(order, at, a + 1, b);
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

void addBezPoint(float x, float y)
{
    g_bezPoints[g_nbez].x = x;
    g_bezPoints[g_nbez].y = y;
    ++g_nbez;
    if (g_nbez >= MaxBezPoints) {
        printf("?!bez count\n");
        g_nbez = MaxBezPoints - 1;
    }
}

// Splits at t = 0.5 until the curve's midpoint lies within the tolerance of its chord.
void flattenBezier(float x0, float y0, float x1, float y1, float x2, float y2, float x3, float y3, int depth)
{
    if (depth > BezMaxDepth)
        return;
    const float x01 = (x0 + x1) * 0.5f, y01 = (y0 + y1) * 0.5f;
    const float x12 = (x1 + x2) * 0.5f, y12 = (y1 + y2) * 0.5f;
    const float x23 = (x2 + x3) * 0.5f, y23 = (y2 + y3) * 0.5f;
    const float x012 = (x01 + x12) * 0.5f, y012 = (y01 + y12) * 0.5f;
    const float x123 = (x12 + x23) * 0.5f, y123 = (y12 + y23) * 0.5f;
    const float mx = (x012 + x123) * 0.5f, my = (y012 + y123) * 0.5f;

    const float cx = x3 - x0, cy = y3 - y0;
    const float chord2 = cx * cx + cy * cy;
    float t = (mx - x0) * cx + (my - y0) * cy;
    if (chord2 > 0)
        t /= chord2;
    t = std::min(1.0f, std::max(0.0f, t));
    const float dx = mx - (x0 + t * cx), dy = my - (y0 + t * cy);
    if (dx * dx + dy * dy > BezTolerance * BezTolerance) {
        flattenBezier(x0, y0, x01, y01, x012, y012, mx, my, depth + 1);
        flattenBezier(mx, my, x123, y123, x23, y23, x3, y3, depth + 1);
    } else {
        addBezPoint(x3, y3);
    }
}

float machineX(float x)
{
    return g_xoffset + (x - g_bounds[0]) * g_scale;
}

float machineY(float y)
{
    return WorkAreaHeight - (g_height - (g_bounds[3] - y) * g_scale - 1 + g_yoffset);
}

// Straight move of length d at `speed` mm/min with a fixed acceleration.
float moveSeconds(float d, float speed)
{
    const float v = speed / 60.0f;
    if (!(v > 0))
        return 0;  // a zero feed never gets anywhere; there is no time to give
    const float p = std::sqrt(Acceleration * d);
    if (v > p)
        return 2.0f * p / Acceleration;
    return v * 3.0f * 0.5f / Acceleration + d / v;
}

// The mapping to machine positions is linear, so finite corners of the bounds mean finite
// positions for every point in them; the frame and the settings are checked alongside.
bool numbersUsable()
{
    const float settings[] = {g_xoffset, g_yoffset, float(g_width) + g_xoffset,
                              WorkAreaHeight - g_yoffset - float(g_height), g_feedSpeed,
                              g_travelSpeed, g_printZ, g_travelZ};
    for (float v : settings)
        if (!std::isfinite(v))
            return false;
    if (g_npoints == 0)
        return true;
    return std::isfinite(machineX(g_bounds[0])) && std::isfinite(machineX(g_bounds[2]))
        && std::isfinite(machineY(g_bounds[1])) && std::isfinite(machineY(g_bounds[3]));
}

void writeFrame(FILE *fp)
{
    const float top = WorkAreaHeight - g_yoffset;
    for (int i = 0; i < 2; ++i) {
        fprintf(fp, "G0 X%.2f Y%.2f F4600\n", g_xoffset, top);
        fprintf(fp, "M106 S%d \n", 5);
        fprintf(fp, "G0 X%.2f Y%.2f \n", g_width + g_xoffset, top);
        fprintf(fp, "G0 X%.2f Y%.2f \n", g_width + g_xoffset, top - g_height);
        fprintf(fp, "G0 X%.2f Y%.2f \n", g_xoffset, top - g_height);
        fprintf(fp, "G0 X%.2f Y%.2f \n", g_xoffset, top);
    }
    fprintf(fp, "M0 \n");
}

} // namespace

void pathconv_set_header(const char *text, int length)
{
    if (!text || length <= 0)
        return;
    memcpy(g_header, text, size_t(std::min(length, HeaderSize)));
}

void pathconv_set_print_mode(int mode) { g_printMode = mode; }
void pathconv_set_travel_speed(float speed) { g_travelSpeed = speed; }
void pathconv_set_feed_speed(float speed) { g_feedSpeed = speed; }
void pathconv_set_print_z(float z) { g_printZ = z; }
void pathconv_set_travel_z(float z) { g_travelZ = z; }
void pathconv_set_machine_ymax(int maxy) { g_machineYmax = maxy; }

void pathconv_set_laser(int power)
{
    snprintf(g_laserOn, sizeof g_laserOn, "M106 S%d \n", power);
    snprintf(g_laserReduced, sizeof g_laserReduced, "M106 S%d \n", power / 2);
}

void pathconv_set_size(int width, int height)
{
    g_width = width;
    g_height = height;
}

void pathconv_set_offset(float x, float y)
{
    g_xoffset = x;
    g_yoffset = y;
}

void pathconv_use_fixed_seed(long long seconds)
{
    g_fixedSeed = true;
    g_seedSeconds = seconds;
}

void pathconv_use_clock_seed()
{
    g_fixedSeed = false;
}

void pathconv_use_portable_draws(int on)
{
    g_portableDraws = on != 0;
}

float pathconv_take_estimate()
{
    const float t = g_estimate;
    g_estimate = 0;
    return t;
}

int pathconv_convert(const char *input, const char *output, int bezier)
{
    SvgImage *image = SvgReader::parseFromFile(input, "mm", 0.1f);
    if (!image) {
        printf("error: Can't open input %s\n", input);
        return -1;
    }
    const int status = pathconv_convert_image(image, input, output, bezier);
    SvgReader::release(image);
    return status;
}

int pathconv_convert_image(const SvgImage *image, const char *name, const char *output, int bezier)
{
    CNumericLocale cLocale;
    g_bezier = bezier;  // every caller asks for curves; kept as a setting all the same

    g_bounds[0] = g_bounds[1] = FLT_MAX;
    g_bounds[2] = g_bounds[3] = -FLT_MAX;
    int nshapes = 0;
    g_npaths = 0;
    g_npoints = 0;
    for (const SvgShape &shape : image->shapes) {
        ++nshapes;
        for (const SvgPath &path : shape.paths) {
            ++g_npaths;
            for (int i = 0; i < path.npts(); ++i) {
                const float x = path.pts[2 * i], y = path.pts[2 * i + 1];
                g_bounds[0] = std::min(g_bounds[0], x);
                g_bounds[1] = std::min(g_bounds[1], y);
                g_bounds[2] = std::max(g_bounds[2], x);
                g_bounds[3] = std::max(g_bounds[3], y);
                ++g_npoints;
            }
        }
    }
    printf("shapes %d\n", nshapes);
    printf("bounds 0=%f 1=%f 2=%f 3=%f\n", g_bounds[0], g_bounds[1], g_bounds[2], g_bounds[3]);

    g_scale = g_width / std::fabs(g_bounds[2] - g_bounds[0]);
    if (!numbersUsable()) {
        printf("error: %s gives positions that are not numbers; no G-code written\n", name);
        return -2;
    }
    seedRandom();

    remove(output);
    FILE *fp = fopen(output, "w");
    if (!fp)
        return -1;

    fprintf(fp, "G1 F2000 \n");
    fprintf(fp, "G28 X0 Y0  ;move X/Y to min endstops \n");
    writeFrame(fp);

    printf("paths %d points %d\n", g_npaths, g_npoints);
    // One spare zeroed record past the last: the closed test below reads it.
    const int capacity = std::max(g_npoints, 1);
    Segment *segs = static_cast<Segment *>(calloc(size_t(capacity), sizeof(Segment)));
    const int pathSlots = std::max(g_npaths, 1);
    float *startX = static_cast<float *>(calloc(size_t(pathSlots), sizeof(float)));
    float *startY = static_cast<float *>(calloc(size_t(pathSlots), sizeof(float)));
    int *firstSeg = static_cast<int *>(calloc(size_t(pathSlots), sizeof(int)));
    int *order = static_cast<int *>(calloc(size_t(pathSlots), sizeof(int)));
    StartPoint *orderAt = static_cast<StartPoint *>(calloc(size_t(pathSlots), sizeof(StartPoint)));
    g_bezPoints = static_cast<BezPoint *>(calloc(MaxBezPoints, sizeof(BezPoint)));
    if (!segs || !startX || !startY || !firstSeg || !order || !orderAt || !g_bezPoints) {
        fprintf(stderr, "out of memory for %d points\n", g_npoints);
        abort();
    }

    for (int i = 0; i < pathSlots; ++i)
        firstSeg[i] = -1;
    int nsegs = 0;
    int pathIndex = 0;
    bool building = true;
    for (const SvgShape &shape : image->shapes) {
        for (const SvgPath &path : shape.paths) {
            if (!building)
                break;
            if (pathIndex >= g_npaths) {
                printf("error i > \n");
                exit(-1);
            }
            const float *p = path.pts.data();
            startX[pathIndex] = path.npts() > 0 ? p[0] : 0;
            startY[pathIndex] = path.npts() > 0 ? p[1] : 0;
            // i + 3 < npts is the "i < npts - 1" of a well-formed path, and never reads past one that is not.
            for (int i = 0; i + 3 < path.npts(); i += 3) {
                if (nsegs >= g_npoints) {
                    printf("error k > \n");
                    nsegs = 0;
                    building = false;
                    break;
                }
                Segment &s = segs[nsegs];
                const float *q = p + 2 * i;
                s.x0 = q[0]; s.y0 = q[1];
                s.x1 = q[2]; s.y1 = q[3];
                s.x2 = q[4]; s.y2 = q[5];
                s.x3 = q[6]; s.y3 = q[7];
                s.path = pathIndex;
                s.closed = path.closed ? 1 : 0;
                if (firstSeg[pathIndex] < 0)
                    firstSeg[pathIndex] = nsegs;
                ++nsegs;
            }
            ++pathIndex;
        }
    }
    for (int i = 0; i < g_npaths; ++i) {
        order[i] = i;
        orderAt[i].x = startX[i];
        orderAt[i].y = startY[i];
    }
    printf("total paths %d, total points %d\n", pathIndex, nsegs);

    printf("reorder ");
    if (g_npaths >= 4) {
        startIndexDraws(g_npaths - 2);
        DrawFeed feed(uint32_t(g_rand), feedHelpers());
        for (int pass = 0; pass < OrderPasses; ++pass) {
            twoOptPass(g_npaths, order, orderAt, feed);
            printf("%d... ", pass);
        }
    } else {
        for (int pass = 0; pass < OrderPasses; ++pass)
            printf("%d... ", pass);
    }
    printf("\n");
    fwrite(g_header, 1, strnlen(g_header, HeaderSize), fp);

    float zc = 0;
    float prevX = g_xoffset, prevY = WorkAreaHeight - g_yoffset;
    float prevPartX = 0, prevPartY = 0;
    for (int e = 0; e < g_npaths; ++e) {
        const int path = order[e];
        const int first = firstSeg[path];
        if (first < 0 || segs[first].path != path || first == nsegs - 1)
            continue;
        const float startZ = zc * ZScale;
        if (g_printMode == 0) {
            fprintf(fp, "M107\n");
            zc += ZStep;
            fprintf(fp, "G0 X%.1f Y%.1f Z%.4f F%.1f\n", machineX(segs[first].x0), machineY(segs[first].y0),
                    startZ, g_travelSpeed);
            fputs(g_laserOn, fp);
            fprintf(fp, "G1 F%.1f \n", g_feedSpeed);
        } else {
            fprintf(fp, "M107\n");
            fprintf(fp, "G0 X%.1f Y%.1f Z%.4f F%.1f\n", machineX(segs[first].x0), machineY(segs[first].y0),
                    startZ, g_travelSpeed);
            fprintf(fp, "M106 S255\n");
            fprintf(fp, "G4 P0.5\n");
            fprintf(fp, "G1 F%.1f \n", g_feedSpeed);
            fprintf(fp, "G1 Z%.1f \n", g_printZ);
        }
        prevPartX = segs[first].x0;
        prevPartY = segs[first].y0;

        int k = first;
        for (; k < nsegs && segs[k].path == path; ++k) {
            const Segment &s = segs[k];
            g_nbez = 0;
            flattenBezier(s.x0, s.y0, s.x1, s.y1, s.x2, s.y2, s.x3, s.y3, 0);
            for (int b = 0; b < g_nbez; ++b) {
                const float x = g_bezPoints[b].x, y = g_bezPoints[b].y;
                if (std::isnan(x) || std::isnan(y))
                    continue;
                if (x > g_bounds[2] || x < g_bounds[0]) {
                    printf("bezPoints %f %f\n", x, g_bounds[0]);
                    continue;
                }
                if (y > g_bounds[3]) {
                    printf("bezPoints y %d\n", b);
                    continue;
                }
                const float step = std::hypot(x - prevPartX, y - prevPartY);
                fputs(step < ReducedPowerDistance ? g_laserReduced : g_laserOn, fp);
                prevPartX = x;
                prevPartY = y;
                const float mx = machineX(x), my = machineY(y);
                const float z = zc * ZScale;
                fprintf(fp, "G1 X%.1f Y%.1f Z%.3f \n", mx, my, z);
                fprintf(fp, "G1 X%.1f Y%.1f Z%.3f \n", mx, my, z);
                zc += ZStep;
                fprintf(fp, "G1 F%.1f \n", g_feedSpeed);
                const float t = moveSeconds(std::hypot(mx - prevX, my - prevY), g_feedSpeed);
                if (std::isfinite(t))
                    g_estimate += t;
                prevX = mx;
                prevY = my;
            }
            segs[k].path = -1;
        }
        // The flag comes from the record after the path's last one (the next path's
        // first, or the spare zero record): machines have been run with this output.
        if (k < capacity && segs[k].closed) {
            fprintf(fp, "M107\n");
            fprintf(fp, "G0 X%.1f Y%.1f Z%.3f \n", machineX(startX[path]), machineY(startY[path]),
                    zc * ZReturnScale);
        }
        if (g_printMode == 0) {
            fprintf(fp, "M107\n");
            fprintf(fp, "G0 F%.1f \n", g_travelSpeed);
        } else {
            fprintf(fp, "M107\n");
            fprintf(fp, "G0 Z%.1f F%.1f\n", g_travelZ, g_travelSpeed);
        }
    }

    fprintf(fp, "M107\n");
    fprintf(fp, "G28\n");
    fclose(fp);
    free(segs);
    free(startX);
    free(startY);
    free(firstSeg);
    free(order);
    free(orderAt);
    free(g_bezPoints);
    g_bezPoints = nullptr;
    return 0;
}
