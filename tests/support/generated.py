"""Settings for tests on generated cases: the same cases in every run, and the smallest one that fails."""

import os

from hypothesis import HealthCheck, Phase, core, given, seed, settings

REPEATABLE = settings(
    database=None,
    deadline=None,
    # Other cases only for a seed on the command line (--hypothesis-seed).
    derandomize=core.global_force_seed is None,
    phases=[Phase.explicit, Phase.generate, Phase.shrink],
    print_blob=True,
    suppress_health_check=[HealthCheck.too_slow],
)


def on_cases(variable, count):
    """Settings for as many cases as the environment variable says, else for `count`."""
    return settings(REPEATABLE, max_examples=int(os.environ.get(variable, count)))


def generate(strategy, count, number):
    """So many cases, made from the seed `number`."""
    generated = []

    @seed(number)
    @settings(REPEATABLE, max_examples=count, phases=[Phase.generate])
    @given(strategy)
    def collect(case):
        generated.append(case)

    collect()
    return generated
