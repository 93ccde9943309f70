"""Tables, for the eye and as Markdown."""


def text(head, rows):
    """Columns as wide as they need; what is not in the first two columns stands to the right."""
    cells = [[str(cell) for cell in row] for row in [head, *rows]]
    widths = [max(len(row[index]) for row in cells) for index in range(len(head))]
    lines = ["  ".join(cell.ljust(width) if index < 2 else cell.rjust(width)
                       for index, (cell, width) in enumerate(zip(row, widths))).rstrip() for row in cells]
    return "\n".join([lines[0], "-" * max(map(len, lines)), *lines[1:]])


def markdown(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return "\n".join(f"| {' | '.join(str(cell) for cell in line)} |" for line in lines)


def number(value, digits=1):
    return "–" if value is None else f"{value:.{digits}f}"


def spread(three, digits=1, factor=1):
    """Median, least and greatest: 0.016 (0.015–0.018)."""
    if three is None:
        return "–"
    median, least, greatest = (f"{factor * value:.{digits}f}" for value in three)
    return f"{median} ({least}–{greatest})"
