"""The XML that answers a check, whole or wrong on purpose."""

from xml.sax.saxutils import quoteattr

HEAD = '<?xml version="1.0" encoding="UTF-8"?>\n'


def update(number, forced, comment, path):
    flag = "true" if forced else "false"
    return f'  <update id="{number}" forced="{flag}" comment={quoteattr(comment)} path={quoteattr(path)}/>\n'


def document(deviceid, updates):
    """`updates`: (id, forced, comment, path) in order; `deviceid` None leaves the identity out."""
    identity = "" if deviceid is None else f'  <deviceid yourId="{deviceid}"/>\n'
    return HEAD + "<updates>\n" + identity + "".join(update(*each) for each in updates) + "</updates>\n"


def _entities():
    # Each entity is ten of the one before: ten levels of it are 10 GB.
    lines = ['<!ENTITY e0 "ha">']
    lines += [f'<!ENTITY e{i} "{f"&e{i - 1};" * 10}">' for i in range(1, 10)]
    body = update(1, False, "BOMB", "http://localhost/app-x.tgz").replace("BOMB", "&e9;")
    return HEAD + "<!DOCTYPE updates [\n" + "\n".join(lines) + "\n]>\n<updates>\n" + body + "</updates>\n"


def _missing_attributes():
    whole = {"id": "1", "forced": "true", "comment": "lacks", "path": "http://localhost/app-x.tgz"}
    lines = []
    for missing in whole:
        attributes = " ".join(f'{name}="{value}"' for name, value in whole.items() if name != missing)
        lines.append(f"  <update {attributes}/>\n")
    return HEAD + "<updates>\n" + "".join(lines) + "</updates>\n"


def faulty(fault, good):
    """The document that the fault of this name makes of the good one; the good one for every other fault."""
    if fault == "huge":
        return good.replace("</updates>", "  <other>" + "x" * (10 * 1024 * 1024) + "</other>\n</updates>")
    if fault == "elements":
        return document(None, ((i, False, "many", "http://localhost/app-x.tgz") for i in range(100_000)))
    if fault == "deep":
        return HEAD + "<updates>" + "<a>" * 100_000 + "</a>" * 100_000 + "</updates>"
    if fault == "entities":
        return _entities()
    if fault == "two-roots":
        return good + "<updates/>\n"
    if fault == "missing-attributes":
        return _missing_attributes()
    if fault == "not-xml":
        return "Updates? We have none, sorry.\n"
    if fault == "cut-document":
        return good[: len(good) // 2]
    if fault == "empty":
        return ""
    return good
