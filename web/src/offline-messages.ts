// SPDX-License-Identifier: Apache-2.0
/** What the page tells the worker that keeps it, when the user wants the newer page. */
export const TAKE_OVER = "take over";
