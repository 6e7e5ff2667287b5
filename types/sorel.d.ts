// What sorel gives every script besides the language.

/** Writes its arguments as texts with a blank between, and a line break, on standard output. */
declare function print(...values: unknown[]): void;

/** As `print`, but objects are shown by their contents. */
declare const console: {
  log(...values: unknown[]): void;
  info(...values: unknown[]): void;
  debug(...values: unknown[]): void;
  /** On standard error. */
  warn(...values: unknown[]): void;
  /** On standard error. */
  error(...values: unknown[]): void;
};

/**
 * Calls `callback` once. The host lives on until then.
 * @param milliseconds 1 to 2147483647; what is less, or no number, is 1
 * @returns what `clearTimeout` takes
 * @throws when `callback` is no function
 */
declare function setTimeout(callback: (...values: any[]) => void, milliseconds?: number, ...values: unknown[]): number;
/** Forgets a timer; one that has fired, or never was, does no harm. */
declare function clearTimeout(id?: number): void;
/**
 * Calls `callback` again and again.
 * @param milliseconds 1 to 2147483647; what is less, or no number, is 1
 * @returns what `clearInterval` takes
 * @throws when `callback` is no function
 */
declare function setInterval(callback: (...values: any[]) => void, milliseconds?: number, ...values: unknown[]): number;
/** Forgets a timer. */
declare function clearInterval(id?: number): void;

/**
 * Runs another script, in this one's global scope, and gives its last value.
 * @param path counts from the folder of the script that calls
 * @throws when it cannot be read, or throws itself
 */
declare function load(path: string): unknown;
/**
 * Ends the program: module objects are finished, and settings are written, before it is gone. Nothing after the call
 * runs.
 * @param status 0 to 255, and 1 in place of anything else; 0 when left out
 */
declare function exit(status?: number): never;
/** Collects garbage now. */
declare function gc(): void;
