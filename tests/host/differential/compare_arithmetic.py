#!/usr/bin/env python3
"""Compares the standalone provider's arithmetic with Python's over random expressions.

    compare_arithmetic.py CALCULATE [COUNT [SEED]]

Each expression is a tree, printed with as few parentheses as the precedences of the language ask
for, and computed from the tree.
"""

import math
import random
import sys

from calculator import ask

NAN = math.nan
OR, AND, NOT, COMPARISON, SUM, PRODUCT, SIGN, POWER, OPERAND = range(1, 10)


def rounded(x):
    whole = math.trunc(x)
    return whole + math.copysign(1, x) if abs(x - whole) >= 0.5 else whole


FUNCTIONS = {
    "abs": abs,
    "sqrt": math.sqrt,
    "cbrt": lambda x: math.cbrt(x),
    "exp": math.exp,
    "ln": math.log,
    "log": math.log10,
    "sin": math.sin,
    "cos": math.cos,
    "tan": math.tan,
    "sinh": math.sinh,
    "cosh": math.cosh,
    "tanh": math.tanh,
    "floor": math.floor,
    "ceil": math.ceil,
    "trunc": math.trunc,
    "round": rounded,
    "sign": lambda x: (x > 0) - (x < 0),
}
PAIRS = {"pow": math.pow, "mod": math.fmod, "hypot": math.hypot, "min": min, "max": max}
OPERATORS = {
    "or": (OR, OR, AND, lambda a, b: a != 0 or b != 0),
    "and": (AND, AND, NOT, lambda a, b: a != 0 and b != 0),
    "<": (COMPARISON, SUM, SUM, lambda a, b: a < b),
    "<=": (COMPARISON, SUM, SUM, lambda a, b: a <= b),
    ">": (COMPARISON, SUM, SUM, lambda a, b: a > b),
    ">=": (COMPARISON, SUM, SUM, lambda a, b: a >= b),
    "==": (COMPARISON, SUM, SUM, lambda a, b: a == b),
    "!=": (COMPARISON, SUM, SUM, lambda a, b: a != b),
    "+": (SUM, SUM, PRODUCT, lambda a, b: a + b),
    "-": (SUM, SUM, PRODUCT, lambda a, b: a - b),
    "*": (PRODUCT, PRODUCT, SIGN, lambda a, b: a * b),
    "/": (PRODUCT, PRODUCT, SIGN, lambda a, b: a / b),
    "%": (PRODUCT, PRODUCT, SIGN, math.fmod),
    "^": (POWER, OPERAND, SIGN, math.pow),
}


def computed(function, *operands):
    """NaN where an operand has no value or the operation gives no finite one."""
    if any(math.isnan(operand) for operand in operands):
        return NAN
    try:
        value = float(function(*operands))
    except (ArithmeticError, ValueError):
        return NAN
    return value if math.isfinite(value) else NAN


class Generator:
    def __init__(self, seed):
        self.random = random.Random(seed)

    def number(self):
        kind = self.random.randrange(8)
        if kind == 0:
            return self.random.choice([("PI", math.pi), ("E", math.e)])
        if kind == 1:
            text = f"{self.random.uniform(0, 10):.3e}"
        elif kind < 5:
            text = str(self.random.randrange(20))
        else:
            text = f"{self.random.uniform(0, 100):.{self.random.randrange(1, 6)}f}"
        return text, float(text)

    def call(self, depth):
        kind = self.random.randrange(4)
        if kind == 0:
            name = self.random.choice(list(PAIRS))
            parts = [self.tree(depth - 1), self.tree(depth - 1)]
            value = computed(PAIRS[name], parts[0][1], parts[1][1])
        elif kind == 1:
            name = "if"
            parts = [self.tree(depth - 1) for _ in range(3)]
            condition = parts[0][1]
            value = NAN if math.isnan(condition) else parts[1 if condition != 0 else 2][1]
        else:
            name = self.random.choice(list(FUNCTIONS))
            parts = [self.tree(depth - 1)]
            value = computed(FUNCTIONS[name], parts[0][1])
        return f"{name}({';'.join(text for text, _, _ in parts)})", value

    def tree(self, depth):
        """Text, value and precedence."""
        kind = self.random.randrange(10) if depth > 0 else 0
        if kind < 2:
            return *self.number(), OPERAND
        if kind < 5:
            return *self.call(depth), OPERAND
        if kind == 5:
            text, value = self.operand(depth, SIGN)
            return "-" + text, -value, SIGN
        if kind == 6:
            text, value = self.operand(depth, NOT)
            return "not " + text, computed(lambda a: a == 0, value), NOT
        symbol = self.random.choice(list(OPERATORS))
        precedence, left_least, right_least, function = OPERATORS[symbol]
        left, a = self.operand(depth, left_least)
        right, b = self.operand(depth, right_least)
        return f"{left} {symbol} {right}", computed(function, a, b), precedence

    def operand(self, depth, least):
        text, value, precedence = self.tree(depth - 1)
        return (text if precedence >= least else f"({text})"), value


def agrees(value, status, answer):
    if math.isnan(value):
        return status == 1
    return status == 0 and math.isclose(answer, value, rel_tol=1e-12, abs_tol=1e-300)


def main():
    program = sys.argv[1]
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 10000
    generator = Generator(int(sys.argv[3]) if len(sys.argv) > 3 else 1)
    cases = [generator.tree(4) for _ in range(count)]
    answers = ask(program, [("evaluate", "ul", text) for text, _, _ in cases])
    wrong = 0
    for (text, value, _), (status, answer) in zip(cases, answers):
        if not agrees(value, int(status), float(answer)):
            wrong += 1
            print(f"{text}\n  here {value!r}, the provider {answer} with status {status}")
    values = sum(not math.isnan(value) for _, value, _ in cases)
    print(f"{count} expressions, {values} of them with a value; {wrong} differ")
    return 0 if wrong == 0 and values > count // 3 else 1


if __name__ == "__main__":
    sys.exit(main())
