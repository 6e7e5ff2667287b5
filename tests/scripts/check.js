// What the cases share: they fail by throwing.
globalThis.equal = (got, wanted, what) => {
  if (got !== wanted) throw new Error(`${what}: got ${JSON.stringify(got)}, wanted ${JSON.stringify(wanted)}`);
};

// Whether the call is refused: a native method that fails throws.
globalThis.refused = (call) => {
  try {
    call();
    return false;
  } catch (error) {
    return true;
  }
};
