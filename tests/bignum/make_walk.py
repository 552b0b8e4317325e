#!/usr/bin/env python3
"""Writes a random walk over eight values, with the state that each step leaves, one step a line.

The values come from Python's own integers. The storage is a model of the rules that the header states
for each operation, written from these rules alone: a value is a number with a capacity. The walk is the
same under every version of Python.

Usage: make_walk.py FILE
"""
import math
import sys

REGISTERS = 8


def following(x):
    """The state after x of the generator behind the operands and the choice of steps."""
    return (x * 6364136223846793005 + 1442695040888963407) % 2**64


class Choices:
    """Random choices. The sequences of Python's own functions for this may change with its version."""

    def __init__(self, seed):
        self.state = seed

    def below(self, end):
        self.state = following(self.state)
        return (self.state >> 32) * end >> 32

    def choice(self, options):
        return options[self.below(len(options))]

    def registers(self, count):
        """Different registers in random order."""
        left = list(range(REGISTERS))
        return [left.pop(self.below(len(left))) for _ in range(count)]


rnd = Choices(20240917)


class N:
    def __init__(self, value=0, capacity=32, count=None):
        self.v, self.cap = value, capacity
        self.empty = count == 0

    @property
    def n(self):
        return 0 if self.empty else max(1, (abs(self.v).bit_length() + 31) // 32)

    def state(self):
        if self.empty:
            return "0 0 +"
        digits = "%X" % abs(self.v)
        if self.n > 8:  # a long magnitude is told by the FNV-1a step over its words, low word first
            mixed = 0
            for i in range(self.n):
                mixed = ((mixed ^ (abs(self.v) >> 32 * i & 0xFFFFFFFF)) * 0x100000001B3) % 2**64
            digits = "#%016X" % mixed
        return "%d %d %s%s" % (self.n, self.cap, "-" if self.v < 0 else "+", digits)


def room(n):
    return (n + 31) // 32 * 32


def grow(d, n):
    if d.cap < n:
        d.cap = room(n)


def copy(a):
    return N(a.v, room(a.n))


def assign(d, a):
    if d is not a:
        d.empty = a.empty
        d.v = a.v
        grow(d, a.n)


def put(d, small):
    d.empty, d.v = False, small
    grow(d, 1)


def swap(a, b):
    a.v, a.cap, a.empty, b.v, b.cap, b.empty = b.v, b.cap, b.empty, a.v, a.cap, a.empty


def shl(d, bits):
    if bits and d.v:
        grow(d, ((bits + 31 + 32 * d.n) >> 5) + 1)
        d.v <<= bits


def shr(d, bits):
    d.v = (abs(d.v) >> bits) * (-1 if d.v < 0 else 1)


def add_magnitude(d, o):
    if d is o:
        shl(d, 1)
    else:
        grow(d, o.n + 1 if d.n < o.n else d.n + 1)
        d.v = abs(d.v) + abs(o.v)


def sub_magnitude(d, o):
    if abs(d.v) < abs(o.v):
        d.cap = room(o.n)
    d.v = abs(d.v) - abs(o.v)


def add(d, o, sign=1):
    total = d.v + sign * o.v
    (add_magnitude if (d.v < 0) == (sign * o.v < 0 if o.v else sign < 0) else sub_magnitude)(d, o)
    d.v = total


def add_small(d, small, sign=1):
    step = -sign * small if d.v < 0 else sign * small
    if step < 0 and abs(d.v) + step <= 0:
        add(d, N(small), sign)
    else:
        grow(d, d.n + 1)
        d.v += sign * small


def mul(d, o):
    if d.v == 0 or o.v == 0:
        put(d, 0)
    elif d.v == 1:
        assign(d, o)
    elif o.v != 1:
        d.v, d.cap = d.v * o.v, room(d.n + o.n)


def mul_small(d, small):
    if d.v == 0 or small == 0:
        put(d, 0)
    elif d.v == 1:
        put(d, small)
    elif small != 1:
        d.v, d.cap = d.v * small, room(d.n + 1)


def divide(a, b, q, r):
    quotient, rest = divmod(abs(a.v), abs(b.v)) if b.v else (0, abs(a.v))
    sign = -1 if (a.v < 0) != (b.v < 0) else 1
    rest = -rest if a.v < 0 else rest
    q = q or N()
    if b.v == 0 or abs(a.v) < abs(b.v):
        assign(r, a)
        put(q, 0)
    elif abs(a.v) == abs(b.v):
        put(r, 0)
        put(q, sign)
    else:
        diff = abs(a.v).bit_length() - abs(b.v).bit_length()
        words = a.n
        assign(r, a)
        if diff >= 32:
            grow(r, words + 2)
        r.v = rest
        q.v, q.cap, q.empty = sign * quotient, room((diff + 32) >> 5), False


def product(a, b):
    if a.v == 0 or b.v == 0:
        return N(0)
    if a.v == 1 or b.v == 1:
        return copy(b if a.v == 1 else a)
    return N(a.v * b.v, room(a.n + b.n))


def mod_pow(base, e, m, result):
    put(result, 1)
    bits = abs(e.v).bit_length()
    if bits > 1 and m.v == 0:
        put(result, 0)
        return
    power = copy(base)
    if e.v & 1:
        assign(result, base)
    if bits == 1:
        divide(result, m, None, result)
    for i in range(1, bits):
        mul(power, power)
        divide(power, m, None, power)
        if abs(e.v) >> i & 1:
            mul(result, power)
            divide(result, m, None, result)


def power(base, e):
    if base.v == 0 or e.v == 0:
        return N(0 if base.v == 0 else 1)
    result = copy(base)
    for i in range(abs(e.v).bit_length() - 2, -1, -1):
        mul(result, result)
        if abs(e.v) >> i & 1:
            mul(result, base)
    return result


def gcd(a, b, result):
    if a.v == 0 or b.v == 0:
        return 0
    t = copy(b)
    assign(result, a)
    while t.v:
        divide(result, t, None, result)
        swap(result, t)
    return 1


def extended_gcd(a, b, g, x, y):
    if b.v == 0:
        assign(g, a)
        put(x, 1)
        put(y, 0)
        return
    r0, r1, x0, x1, y0, y1 = copy(a), copy(b), N(1), N(0), N(0), N(1)
    q, r = N(0, 0, 0), N(0, 0, 0)
    while r1.v > 0:
        divide(r0, r1, q, r)
        for new, old, now in ((r, r0, r1), (x, x0, x1), (y, y0, y1)):
            assign(new, old)
            add(new, product(q, now), -1)
        for new, old, now in ((r, r0, r1), (x, x0, x1), (y, y0, y1)):
            swap(old, now)
            swap(now, new)
    swap(g, r0)
    swap(x, x0)
    swap(y, y0)


def square_root(a):
    if a.v <= 0:
        return N(0)
    first = (1 << ((a.v.bit_length() + 1) >> 1)).bit_length()
    return N(math.isqrt(a.v), room((first + 31) // 32))


def from_text(d, text):
    put(d, 0)
    for c in text:
        mul_small(d, 10)
        add_small(d, int(c))


def to_text(v, radix):
    digits, rest = "", abs(v)
    while rest or not digits:
        digits, rest = "0123456789ABCDEF"[rest % radix] + digits, rest // radix
    return ("-" if v < 0 else "") + digits + {2: "b", 8: "o", 10: "", 16: "h"}.get(radix, "|")


def pattern(count, kind, seed):
    """The words of the test's own operands, low word first; mirrored in the test."""
    words, x = [], seed
    for i in range(count):
        x = following(x)
        w = x >> 32
        top = i + 1 == count
        words.append([w, 0xFFFFFFFF, w if 2 * i >= count else 0, 1 << seed % 32 if top else 0,
                      0xFFFFFFFF if w & 0x100 else 0, 0x80000000 if top else w % 3][kind])
    if words[-1] == 0:
        words[-1] = 1
    return sum(w << 32 * i for i, w in enumerate(words))


regs = [N() for _ in range(REGISTERS)]
out = open(sys.argv[1], "w", newline="\n")


def step(op, args, changed, **more):
    row = ["Op = " + op, "Args = " + " ".join(map(str, args))]
    row += ["%s = %s" % entry for entry in more.items()]
    row += ["R%d = %s" % (i, regs[i].state()) for i in sorted(set(changed))]
    print(*row, sep=" | ", file=out)


def load(i, count, kind=None, negative=None):
    kind = rnd.below(6) if kind is None else kind
    negative = rnd.below(2) if negative is None else negative
    seed = rnd.below(1000)
    regs[i] = N(pattern(count, kind, seed) * (-1 if negative else 1), room(count))
    step("Set", (i, count, kind, seed, negative), [i])


def size():
    return rnd.choice([1, 1, 1, 2, 2, 3, 4, 8, 16, 29, 30, 31, 32, 33, 34, 61, 62, 63, 64, 65,
                       1 + rnd.below(96), 1 + rnd.below(200)])


def small(near=None):
    """A small operand; near a value of one word, now and then one that cancels it, or nearly."""
    if near is not None and abs(near) < 2**31 - 1 and rnd.below(3) == 0:
        return rnd.choice([-1, 1]) * near + rnd.below(3) - 1
    return rnd.choice([0, 1, -1, 2, -2, 10, 3, -3, 2**31 - 1, -2**31, rnd.below(2**32) - 2**31])


def fresh(make, *operands):
    made = copy(operands[0]) if operands else N()
    make(made)
    return made


def modulo(d, o):
    rest = N(0, 0, 0)
    divide(d, o, None, rest)
    swap(d, rest)


def quotient(a, b):
    made = N(0, 0, 0)
    divide(a, b, made, N(0, 0, 0))
    return made


IN_PLACE = {  # one value or two, which may be one object
    "Assign": assign, "Swap": swap, "Add": add, "Sub": lambda d, o: add(d, o, -1), "Mul": mul,
    "Mod": modulo, "AddMagnitude": add_magnitude, "SubtractMagnitude": sub_magnitude}
WITH_SMALL = {
    "AssignSmall": put, "AddSmall": add_small, "SubSmall": lambda d, s: add_small(d, s, -1),
    "MulSmall": mul_small}
WITH_BITS = {"Shl": shl, "Shr": shr, "Grow": lambda d, n: setattr(d, "cap", room(max(n, d.n)))}
FRESH = {
    "Plus": lambda a, b: fresh(lambda d: add(d, b), a),
    "Minus": lambda a, b: fresh(lambda d: add(d, b, -1), a), "Times": product, "Over": quotient}
FRESH_SMALL = {
    "MinusSmall": lambda a, s: fresh(lambda d: add_small(d, s, -1), a),
    "TimesSmall": lambda a, s: product(a, N(s)),
    "ShiftedRight": lambda a, s: fresh(lambda d: shr(d, s & 2047), a)}


def in_place(op, d, a):
    IN_PLACE[op](regs[d], regs[a])
    step(op, (d, a), (d, a) if op == "Swap" else (d,))


def in_place_small(op, d, s):
    dict(WITH_SMALL, **WITH_BITS)[op](regs[d], s)
    step(op, (d, s), (d,))


def walk():
    d, a, b, c = rnd.registers(4)
    if rnd.below(8) == 0:
        a = d
    if regs[d].n + regs[a].n > 230 or regs[b].n > 200:
        load(d, 1)
        load(b, 2)
        return load(a, size())
    bits = rnd.choice([0, 1, 7, 31, 32, 33, 63, 64, 96, 200, rnd.below(1200)])
    group = rnd.below(8)
    if group == 0:
        in_place(rnd.choice(list(IN_PLACE)), d, a)
    elif group == 1:
        in_place_small(rnd.choice(list(WITH_SMALL)), d, small(regs[d].v))
    elif group == 2:
        in_place_small(rnd.choice(list(WITH_BITS)), d, bits)
    elif group == 3:
        op = rnd.choice(list(FRESH))
        regs[d] = FRESH[op](regs[a], regs[b])
        step(op, (d, a, b), (d,))
    elif group == 4:
        op = rnd.choice(list(FRESH_SMALL))
        s = bits if op == "ShiftedRight" else small(regs[a].v)
        regs[d] = FRESH_SMALL[op](regs[a], s)
        step(op, (d, a, s), (d,))
    elif group == 5:
        load(d, size())
    else:
        if rnd.below(2):  # a multiple of the divisor by a power of two, and its neighbours
            in_place("Assign", a, b)
            in_place_small("Shl", a, rnd.choice([0, 1, 31, 32, 33, 63, 64, 65, 95, 96, 97, 700]))
            in_place_small("AddSmall", a, rnd.choice([0, -1, 1, 2**31 - 1]))
        if rnd.below(4) == 0 and a != d:
            regs[d] = N(0, 0, 0)
            step("Empty", (d,), (d,))
        rest = c if rnd.below(3) else a
        if d == rest:
            d = c
        if rnd.below(2) or regs[d].empty:
            divide(regs[a], regs[b], regs[d], regs[rest])
            step("Divide", (a, b, d, rest), (d, rest))
        else:
            divide(regs[a], regs[b], None, regs[rest])
            step("Remainder", (a, b, rest), (rest,))


def theory():
    for i in range(260):
        a, b, m, d, x, y = rnd.registers(6)
        load(a, rnd.choice([1, 1, 2, 5, 31, 33, 40, 64]))
        load(b, rnd.choice([1, 1, 2, 5, 31, 33, 40]))
        if i % 5 == 0:
            load(m, rnd.choice([1, 2, 16, 31, 33]))
            if i % 3 == 0:
                in_place_small("AssignSmall", b, rnd.choice([0, 1, -1, 2, 3, 65537]))
            if i % 40 == 0:
                in_place_small("AssignSmall", m, rnd.choice([0, 1, -1]))
            elif abs(regs[b].v).bit_length() > 300:
                in_place_small("Shr", b, abs(regs[b].v).bit_length() - 80)
            mod_pow(regs[a], regs[b], regs[m], regs[d])
            step("ModPow", (a, b, m, d), (d,))
        elif i % 5 == 1:
            in_place_small("AssignSmall", b, rnd.below(14))
            regs[d] = power(regs[a], regs[b])
            step("Pow", (d, a, b), (d,))
        elif i % 5 == 2:
            d = rnd.choice([a, d])
            step("Gcd", (a, b, d), (d,), Result=gcd(regs[a], regs[b], regs[d]))
        elif i % 5 == 3:
            if i % 2:
                load(a, 34, 0, 0)
                load(b, 33, 0, 0)
            extended_gcd(regs[a], regs[b], regs[d], regs[x], regs[y])
            step("ExtendedGcd", (a, b, d, x, y), (d, x, y))
        else:
            regs[d] = square_root(regs[a])
            step("IntegerSqrt", (d, a), (d,))
    for bit in [0, 1, 31, 32, 33, 1023, 1024, 2047]:
        regs[0] = N(1 << bit, room((bit + 32) >> 5))
        step("PowerOfTwo", (0, bit), (0,))


def texts():
    for i in range(120):
        a, d = rnd.registers(2)
        load(a, rnd.choice([1, 1, 2, 5, 31, 32, 33]))
        radix = 2 + i % 15
        step("ToText", (a, radix), (), Result=to_text(regs[a].v, radix))
        if radix == 10:
            text = to_text(abs(regs[a].v), 10)
            from_text(regs[d], text)
            step("FromText", (d,), (d,), Text=text)


for _ in range(4000):
    walk()
theory()
texts()
