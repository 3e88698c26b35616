"""First draws of the uniform generator, from an implementation independent of the library's.

The 64-bit Mersenne twister (Nishimura 2000, MT19937-64) filled by the seed sequence of the C++ standard
([rand.util.seedseq]) from the words seed, 0x9E3779B9, ~seed; a draw is the upper 53 bits times 2^-53.
Run: python3 uniforms.py
"""

M32 = 0xFFFFFFFF
M64 = (1 << 64) - 1


def seed_sequence(words, n):
    out = [0x8B8B8B8B] * n
    s = len(words)
    t = 11 if n >= 623 else 7 if n >= 68 else 5 if n >= 39 else 3 if n >= 7 else (n - 1) // 2
    p = (n - t) // 2
    q = p + t
    m = max(s + 1, n)

    def mix(x):
        return x ^ (x >> 27)

    for k in range(m):
        r1 = 1664525 * mix(out[k % n] ^ out[(k + p) % n] ^ out[(k - 1) % n]) & M32
        r2 = (r1 + (s if k == 0 else k % n + words[k - 1] if k <= s else k % n)) & M32
        out[(k + p) % n] = (out[(k + p) % n] + r1) & M32
        out[(k + q) % n] = (out[(k + q) % n] + r2) & M32
        out[k % n] = r2
    for k in range(m, m + n):
        r3 = 1566083941 * mix((out[k % n] + out[(k + p) % n] + out[(k - 1) % n]) & M32) & M32
        r4 = (r3 - k % n) & M32
        out[(k + p) % n] ^= r3
        out[(k + q) % n] ^= r4
        out[k % n] = r4
    return out


def stream(seed):
    words = seed_sequence([seed, 0x9E3779B9, ~seed & M32], 624)
    state = [words[2 * i] | (words[2 * i + 1] << 32) for i in range(312)]
    i = 312
    while True:
        if i == 312:
            for j in range(312):
                x = (state[j] & 0xFFFFFFFF80000000) | (state[(j + 1) % 312] & 0x7FFFFFFF)
                state[j] = state[(j + 156) % 312] ^ (x >> 1) ^ (0xB5026F5AA96619E9 if x & 1 else 0)
            i = 0
        y = state[i]
        i += 1
        y ^= (y >> 29) & 0x5555555555555555
        y ^= (y << 17) & 0x71D67FFFEDA60000 & M64
        y ^= (y << 37) & 0xFFF7EEE000000000 & M64
        y ^= y >> 43
        if y >> 11:
            yield (y >> 11) * 2.0**-53


for seed in (1, 2147483647):
    draws = stream(seed)
    first = [next(draws) for _ in range(1000)]
    print(seed, [u.hex() for u in first[:3]], "1000th:", first[999].hex())
