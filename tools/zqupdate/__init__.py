"""What the tools for the other end of the update protocol share: the packing tool and the update server."""


class ToolError(Exception):
    """Something that the person at the keyboard can mend; the text says what."""
