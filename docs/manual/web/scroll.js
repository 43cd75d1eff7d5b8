// An example or a table that is wider than the page can be reached, and so be scrolled, with the
// keyboard.
"use strict";

(() => {
    const observer = new ResizeObserver((entries) => {
        for (const { target } of entries) {
            if (target.scrollWidth > target.clientWidth) target.tabIndex = 0;
            else target.removeAttribute("tabindex");
        }
    });
    document.querySelectorAll("main pre, .table").forEach((box) => observer.observe(box));
})();
