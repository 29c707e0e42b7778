// The page's words in the user's language; the host answers with another file of this kind where it is not English.
export const language = 'en';
export const translation = {};
