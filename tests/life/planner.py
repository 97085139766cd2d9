# SPDX-License-Identifier: MIT
"""Makes a data folder of every kind of note that task operations meet."""

import datetime
import os

FIRST = datetime.date(2019, 12, 1)
DAYS = 30
WORDS = ("call", "write", "Zürich", "naïve", "日本語", "🧺 wash", "#home", "#work/deep", "@anna", "(maybe)", "e\u0301te",
         "https://a.example/x?y=1#z", "1) of 3", "[X] odd", "שלום")
SIGNS = ("*", "-", "3.", "12)")
BOXES = ("[ ] ", "[ ] ", "[ ] ", "", "[x] ", "[-] ", "[>] ", "[\t] ")
INDENTS = ("", "", "", "\t", "\t\t", "  ", "    ")
OTHERS = ("# Heading", "## Section", "> quote", "plain text", "", "   ", "---", "```", "* * *", "##Archive no")


def make_planner(root, random):
    for step in range(DAYS):
        day = FIRST + datetime.timedelta(days=step)
        if random.random() < 0.8:
            write_note(root, f"Calendar/{day:%Y%m%d}.txt", random)
    for index in range(15):
        write_note(root, f"Notes/{'Sub folder/' * (index % 3 == 0)}Note {index:02} ä.{'md' if index % 5 == 0 else 'txt'}",
                   random)
    for name, data in {
        "Notes/Empty.txt": b"", "Calendar/20200105.txt": b"", "Calendar/20200106.txt": b"\n",
        "Calendar/20200107.txt": b"* [ ] no end", "Calendar/20200108.txt": b"* [ ] windows\r\n* [ ] no end",
        "Calendar/20200109.txt": b"\xef\xbb\xbf* [ ] marked", "Calendar/20200110.txt": b"\xff\xfe not a text\n",
        "Notes/Archived.txt": b"# T\n* [x] a\n\t* [ ] b\n\n## Archive\n* [x] old\n\n## More\n- [-] c\n",
    }.items():
        write(root, name, data)


def write(root, name, data):
    path = os.path.join(root, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(data)


def write_note(root, name, random):
    lines = [random_line(random) for _ in range(random.randint(1, 30))]
    lines += random.choices(lines, k=2)  # equal ones
    end = random.choice(("\n", "\n", "\r\n"))
    text = end.join(lines) + random.choice((end, ""))
    write(root, name, (random.choice(("", "", "", "\ufeff")) + text).encode())


def random_line(random):
    if random.random() < 0.2:
        return random.choice(OTHERS)
    box = random.choice(BOXES)
    tags = []
    day = FIRST + datetime.timedelta(days=random.randrange(DAYS + 10))
    if box == "[>] " or random.random() < 0.1:
        tags.append(f" >{day}")
    if random.random() < 0.1:
        tags.append(random.choice((f" <{day}", f" @{day}", " >2019-02-31")))
    if box == "[x] " or random.random() < 0.03:
        tags.append(random.choice((f" @done({day} 14:07)", f" @done({day})", f" @done({day} 02:07 PM)", "")))
    if random.random() < 0.1:
        tags.append(random.choice((" @repeat(2/3)", " @repeat(3/3)", " @final-repeat")))
    random.shuffle(tags)
    words = " ".join(random.choices(WORDS, k=random.randint(0, 5)))
    return random.choice(INDENTS) + random.choice(SIGNS) + " " + box + words + "".join(tags) + random.choice(("", "", " "))
