// SPDX-License-Identifier: Apache-2.0
// Dark, light, or as the system has it.
export type Theme = "" | "light" | "dark";

export function applyTheme(theme: Theme): void {
    if (theme === "") delete document.documentElement.dataset.theme;
    else document.documentElement.dataset.theme = theme;
}

export function nextTheme(theme: Theme): Theme {
    const systemIsDark = matchMedia("(prefers-color-scheme: dark)").matches;
    const other: Theme = systemIsDark ? "light" : "dark";
    return theme === "" ? other : "";
}
