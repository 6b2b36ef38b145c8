"""The program calculate, as the comparisons ask it."""

import subprocess


def ask(program, questions):
    """The fields of the answer to each question, a tuple of texts."""
    text = "".join("\t".join(question) + "\n" for question in questions)
    run = subprocess.run(
        [program], input=text, capture_output=True, text=True, encoding="utf-8", check=True
    )
    answers = [line.split("\t") for line in run.stdout.splitlines()]
    assert len(answers) == len(questions), f"{len(answers)} answers to {len(questions)} questions"
    return answers
