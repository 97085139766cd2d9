# SPDX-License-Identifier: MIT
"""What the tests that kill the program at random moments have in common."""

import os
import random
import sys
import tempfile

from home import Home


def kill_often(killer_class, usual_count, what):
    """Kills as often as the arguments say, PROGRAM [SEED [COUNT]], and returns the exit status."""
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else random.SystemRandom().randrange(1 << 32)
    count = int(sys.argv[3]) if len(sys.argv) > 3 else usual_count
    print(f"seed {seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="tessaly-kills-") as folder:
        killer = killer_class(Home(os.path.realpath(sys.argv[1]), os.path.realpath(folder)), seed)
        for number in range(count):
            killer.kill_one(number)
        killer.finish()
    told = ", ".join(f"{number} {outcome}" for outcome, number in killer.seen.items())
    print(f"{what} takes {killer.life * 1e3:.0f} ms; of {count}: {told}")
    return killer.problems.finish()
